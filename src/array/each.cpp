#include "array/each.h"

#include "array/applied.h"
#include "values/shared.h"

#include <bit>

namespace tessor {

namespace {

// The elements of an array as arguments. A simple element becomes a scalar that goes under all the
// kinds of the array.
class Arguments {
public:
    explicit Arguments(const Space& data)
        : data_(data), type_(ISSCALAR | (data.type & element_kinds)) {
        if (data.type & ISINPLACE)
            return;
        const Layout layout = layout_of(data.data_pointer);
        storage_ = layout.storage;
        look_ = look_word(layout.form, layout.marks, storage_tag(storage_));
    }

    /// Element i of packed numbers and characters; false for any other.
    bool put_packed(Space& place, std::uint32_t i) const {
        switch (storage_) {
        case Storage::integer: put_item<std::int32_t>(place, i); return true;
        case Storage::real: put_item<double>(place, i); return true;
        case Storage::character:
        case Storage::truth: put_item<std::uint8_t>(place, i); return true;
        default: return false;
        }
    }

    void put(Space& place, const Element& element) const {
        copy_scalar(place, element);
        place.type = type_ | (place.type & ISINPLACE);
    }

private:
    template <class T>
    void put_item(Space& place, std::uint32_t i) const {
        const T item = static_cast<const T*>(data_.data_pointer)[i];
        put_word(place, 0, word_of(0, type_ | ISINPLACE));
        put_word(place, 1, 0);
        put_word(place, 2, word_of(0, 1));
        put_word(place, 3, look_);
        if constexpr (sizeof(T) == 8)
            put_word(place, 4, std::bit_cast<std::uint64_t>(item));
        else
            put_word(place, 4, word_of(static_cast<std::uint32_t>(item), 0));
    }

    const Space& data_;
    std::uint32_t type_;
    Storage storage_ = Storage::elements;
    std::uint64_t look_ = 0;
};

void put_argument(Applied& applied, const Arguments& arguments, const Space& data,
                  std::uint32_t i) {
    Space& place = applied.argument();
    if (arguments.put_packed(place, i))
        return;
    make_empty(place);
    const Element element = element_at(data, i);
    const bool structured = (data.type & STRUCTURED) != 0;
    if (structured && (element.tag < tag::subarray || element.tag > tag::octonion))
        applied.leave(994);
    if (structured && element.tag == tag::subarray) {
        place = *element.subarray;
        referencepoint(&place);
    } else {
        arguments.put(place, element);
    }
}

} // namespace

void monadiceach(Activation& run, const Space& data, const Space& function) {
    Applied applied(run, function, data.elements);
    const Arguments arguments(data);
    for (std::uint32_t i = 0; i < data.elements; ++i) {
        put_argument(applied, arguments, data, i);
        applied.next();
    }
    Space frame = data;
    if (frame.rank > 0)
        count_up(frame.shape_pointer);
    const Space result = applied.finish(frame);
    *++run.top = result;
    operations += result.elements;
}

Next each(Activation& run) {
    if ((run.top->type | run.top[-1].type) & ISEMPTY) {
        pop(run);
        return Next::advance;
    }
    if (run.top->rank != kind::FUNCTION)
        return failed(run, 990);
    const int arguments = run.top->arguments;
    if (arguments != 1 && arguments != 2)
        return failed(run, 989);
    const Held function(*run.top--);
    if (arguments == 2 || run.top->rank < 0)
        return Next::advance;
    if (!may_nest(run))
        return Next::failed;
    const Held data(*run.top--);
    monadiceach(run, data.value(), function.value());
    return Next::advance;
}

} // namespace tessor
