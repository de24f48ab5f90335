#include "array/products.h"

#include "parallel/coprocessor.h"
#include "scalar/arithmetic.h"
#include "scalar/verbs.h"

#include <algorithm>
#include <type_traits>

namespace tessor {

namespace {

constexpr std::uint8_t blank = ' ';

bool is_real_like(const Element& element) {
    return element.tag == tag::integer || element.tag == tag::real;
}
bool is_hypercomplex(const Element& element) {
    return element.tag >= tag::complex && element.tag <= tag::octonion;
}
bool has_multiply(const Element& element) {
    return element.tag == tag::subarray || is_real_like(element) || is_hypercomplex(element);
}

double real_of(const Element& element) {
    return element.tag == tag::integer ? element.integer : element.c[0];
}

// What lets a character through.
bool opens(const Element& element) {
    switch (element.tag) {
    case tag::ascii: return element.character > blank;
    case tag::integer: return element.integer != 0;
    default: return element.c[0] > 0.5;
    }
}

Element passed(const Element& character, bool open) {
    return character_element(open ? character.character : blank, character.form,
                             character.marks & passing_marks);
}

std::int32_t weighed(std::int32_t element, std::int32_t weight) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(element)
                                     * static_cast<std::uint32_t>(weight));
}
double weighed(double element, double weight) {
    return weight == 0 ? 0.0 : weight * element;
}

// A number of the kind of one that is hypercomplex; only complex numbers keep their look.
Element like(const Element& number) {
    Element result;
    result.tag = number.tag;
    if (number.tag == tag::complex) {
        result.form = number.form;
        result.marks = number.marks & passing_marks;
    }
    return result;
}

Element scaled(const Element& number, double factor, double& flops) {
    Element result = like(number);
    const int width = components_of(number.tag);
    for (int i = 0; i < width; ++i)
        result.c[i] = number.c[i] * factor;
    flops += width;
    return result;
}

template <int L, int R>
Element full_product(const Element& element, const Element& weight, double& flops) {
    Element result = like(L < R ? weight : element);
    product<L, R>(result.c, element.c, weight.c);
    if constexpr (L == 2 && R == 2)
        flops += multiplied_flops(Stored<Complex>::get(element), Stored<Complex>::get(weight));
    else
        flops += product_flops<L, R>(element.c, weight.c);
    return result;
}

using FullProduct = Element (*)(const Element&, const Element&, double&);
constexpr FullProduct full_products[3][3] = {
    {full_product<2, 2>, full_product<2, 4>, full_product<2, 8>},
    {full_product<4, 2>, full_product<4, 4>, full_product<4, 8>},
    {full_product<8, 2>, full_product<8, 4>, full_product<8, 8>},
};

// Two numbers; what is no hypercomplex number is an integer or a real.
Element product_of_numbers(const Element& weight, const Element& element, double& flops) {
    if (is_hypercomplex(weight) && is_hypercomplex(element))
        return full_products[element.tag - tag::complex][weight.tag - tag::complex](element, weight,
                                                                                    flops);
    if (is_hypercomplex(weight))
        return scaled(weight, real_of(element), flops);
    if (is_hypercomplex(element))
        return real_of(weight) == 0 ? like(element) : scaled(element, real_of(weight), flops);
    if (weight.tag == tag::integer && element.tag == tag::integer)
        return integer_element(weighed(element.integer, weight.integer));
    flops += 1;
    return real_element(weighed(real_of(element), real_of(weight)));
}

void put_operand(Space& place, const Element& element) {
    make_empty(place);
    if (element.tag == tag::subarray) {
        place = *element.subarray;
        referencepoint(&place);
    } else {
        copy_scalar(place, element);
    }
}

} // namespace

Products::Products(Activation& run, Applied& applied, const Space& data, const Space& mask)
    : run_(run), applied_(applied), data_(data), mask_(mask) {
    for (std::uint32_t i = 0; i < mask.elements; ++i) {
        weights_.push_back(element_at(mask, i));
        if (weights_.back().tag == tag::integer)
            integers_.push_back(weights_.back().integer);
        else if (weights_.back().tag == tag::real)
            reals_.push_back(weights_.back().c[0]);
    }
    if (integers_.size() == weights_.size())
        choose_road(integers_);
    else if (reals_.size() == weights_.size())
        choose_road(reals_);
}

// A loop for packed data under a mask of one kind.
template <class Weight>
void Products::choose_road(const std::vector<Weight>&) {
    if ((data_.type & ISINPLACE) || !data_.data_pointer)
        return;
    const Storage storage = storage_of(data_.data_pointer);
    switch (storage) {
    case Storage::integer: weigh_ = weigh<std::int32_t, std::int32_t, Weight>; break;
    case Storage::truth: weigh_ = weigh<std::uint8_t, std::int32_t, Weight>; break;
    case Storage::real: weigh_ = weigh<double, double, Weight>; break;
    case Storage::degree: weigh_ = weigh<std::uint8_t, double, Weight>; break;
    default: return;
    }
    weighs_reals_ = std::is_same_v<Weight, double> || storage_tag(storage) == tag::real;
}

template <class Item, class Value, class Weight>
void Products::weigh(const Products& products, const Neighbours& neighbours, void* out) {
    constexpr bool whole = std::is_same_v<Value, Weight> && std::is_same_v<Value, std::int32_t>;
    using Number = std::conditional_t<whole, std::int32_t, double>;
    const Weight* weights = nullptr;
    if constexpr (std::is_same_v<Weight, double>)
        weights = products.reals_.data();
    else
        weights = products.integers_.data();
    const Item* items = static_cast<const Item*>(products.data_.data_pointer) + neighbours.origin();
    const std::int64_t* places = neighbours.places().data();
    auto* results = static_cast<Number*>(out);
    const std::size_t n = products.weights_.size();
    for (std::size_t j = 0; j < n; ++j) {
        if (places[j] == Neighbours::outside)
            results[j] = 0;
        else
            results[j] =
                weighed(static_cast<Number>(items[places[j]]), static_cast<Number>(weights[j]));
    }
}

void* Products::typed(const Neighbours& neighbours) {
    const Storage storage = weighs_reals_ ? Storage::real : Storage::integer;
    void* block =
        allocate_items(mask_.elements, item_size(storage), encode({storage, form::number, 0}));
    weigh_(*this, neighbours, block);
    if (weighs_reals_)
        flops_ += mask_.elements;
    return block;
}

// Subarrays: MULTIPLY, with the data on the left.
Element Products::multiplied(const Element& weight, const Element& element) {
    Space*& top = applied_.top();
    put_operand(applied_.argument(), element);
    put_operand(applied_.argument(), weight);
    multiply(&top, run_.now, run_.quads, 0);
    wait_for_coprocessors();
    Element result;
    result.tag = tag::subarray;
    result.subarray = enclose(*top);
    --top;
    return result;
}

Element Products::combined(const Element& weight, const Element& element) {
    const bool weight_is_text = weight.tag == tag::ascii;
    const bool element_is_text = element.tag == tag::ascii;
    if (element_is_text && (weight_is_text || is_real_like(weight)))
        return passed(element, opens(weight));
    if (weight_is_text && is_real_like(element))
        return passed(weight, opens(element));
    if (!has_multiply(weight) || !has_multiply(element))
        applied_.leave(994);
    if (weight.tag == tag::subarray || element.tag == tag::subarray)
        return multiplied(weight, element);
    return product_of_numbers(weight, element, flops_);
}

void* Products::general(const Neighbours& neighbours, std::uint32_t& kinds) {
    ArrayBuilder products(mask_.elements);
    for (std::size_t j = 0; j < weights_.size(); ++j) {
        const std::int64_t place = neighbours.places()[j];
        Element product = integer_element(0);
        if (place != Neighbours::outside)
            product = combined(weights_[j], element_at(data_, static_cast<std::uint32_t>(
                                                                  neighbours.origin() + place)));
        try {
            products.add(product);
        } catch (...) {
            if (product.tag == tag::subarray)
                release_enclosed(product.subarray);
            throw;
        }
    }
    kinds = products.kinds();
    return products.finish();
}

void Products::put(Space& place, const Neighbours& neighbours) {
    std::uint32_t kinds = weighs_reals_ ? HASREAL : HASINTEGER;
    void* block = weigh_ && (neighbours.complete() || !weighs_reals_) ? typed(neighbours)
                                                                      : general(neighbours, kinds);
    if (kinds & STRUCTURED)
        kinds |= ISSTRUCTURE;
    if (mask_.elements > 1 && several(kinds & simple_kinds))
        kinds |= COMPLEXED;
    place = mask_;
    if (place.rank > 0)
        count_up(place.shape_pointer);
    if (place.type & ISINPLACE) {
        place.first_index = 0;
        place.last_index = 0;
    }
    place.type = (place.type & ~(element_kinds | COMPLEXED | ISINPLACE)) | kinds;
    place.data_pointer = block;
    settle_scalar(place);
}

} // namespace tessor
