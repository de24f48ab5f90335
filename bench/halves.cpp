#include "halves.h"

#include "clock.h"
#include "work.h"

#include <atomic>
#include <cmath>
#include <memory>
#include <thread>

namespace bench {

namespace {

template <class F>
void each(std::size_t n, F f) {
    for (std::size_t i = 0; i < n; ++i)
        f(i);
}

std::unique_ptr<double[]> left, right, result;

// A second thread that waits for its half without sleeping.
class Helper {
public:
    Helper() : thread_([this] { work(); }) {}
    Helper(const Helper&) = delete;
    Helper& operator=(const Helper&) = delete;
    ~Helper() {
        row_ = nullptr;
        turn_.store(1);
        thread_.join();
    }
    void start(const HalvedRow& row, std::size_t from, std::size_t to) {
        row_ = &row;
        from_ = from;
        n_ = to - from;
        turn_.store(1, std::memory_order_release);
    }
    void wait() {
        while (turn_.load(std::memory_order_acquire) != 0) {
        }
    }

private:
    void work() {
        for (;;) {
            while (turn_.load(std::memory_order_acquire) == 0) {
            }
            if (!row_)
                return;
            row_->loop(left.get() + from_, right.get() + from_, result.get() + from_, n_);
            turn_.store(0, std::memory_order_release);
        }
    }

    const HalvedRow* row_ = nullptr;
    std::size_t from_ = 0;
    std::size_t n_ = 0;
    std::atomic<int> turn_{0};
    std::thread thread_;
};

void exponentials(const double*, const double* b, double* r, std::size_t n) {
    each(n, [=](std::size_t i) { r[i] = std::exp(b[i]); });
}
void sines(const double*, const double* b, double* r, std::size_t n) {
    each(n, [=](std::size_t i) { r[i] = std::sin(b[i]); });
}
void powers(const double*, const double* b, double* r, std::size_t n) {
    each(n, [=](std::size_t i) { r[i] = std::pow(b[i], 1.5); });
}
void quotients(const double* a, const double* b, double* r, std::size_t n) {
    each(n, [=](std::size_t i) { r[i] = a[i] / b[i]; });
}
void roots(const double*, const double* b, double* r, std::size_t n) {
    each(n, [=](std::size_t i) { r[i] = std::sqrt(b[i]); });
}

} // namespace

std::vector<HalvedRow> halved_rows() {
    return {{"B EXP", exponentials},
            {"B SIN", sines},
            {"B 1.5 POWER", powers},
            {"A B DIVIDE", quotients},
            {"B SQRT", roots}};
}

void prepare_plain(std::size_t n) {
    left = std::make_unique<double[]>(n);
    right = std::make_unique<double[]>(n);
    result = std::make_unique<double[]>(n);
    fill_operand(left.get(), Type::float64, n, left_value);
    fill_operand(right.get(), Type::float64, n, right_value);
    for (std::size_t i = 0; i < n; ++i)
        right[i] *= 1e-3;
}

double plain_time(const HalvedRow& row, std::size_t n, int times, bool halved) {
    if (!halved) {
        const double began = now();
        for (int i = 0; i < times; ++i)
            row.loop(left.get(), right.get(), result.get(), n);
        return (now() - began) / times;
    }
    Helper helper;
    const double began = now();
    for (int i = 0; i < times; ++i) {
        helper.start(row, n / 2, n);
        row.loop(left.get(), right.get(), result.get(), n / 2);
        helper.wait();
    }
    return (now() - began) / times;
}

} // namespace bench
