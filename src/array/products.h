// The products of a neighbourhood and a mask, element by element.
#pragma once

#include "array/applied.h"
#include "array/neighbours.h"

#include <vector>

namespace tessor {

class Products {
public:
    /// For what is run on the products; data and mask must stay where they are.
    Products(Activation& run, Applied& applied, const Space& data, const Space& mask);

    /// The products at a position as a value in the mask's frame, in a cell that holds an empty
    /// value. 994 for two elements that have no product; what MULTIPLY reports for subarrays.
    void put(Space& place, const Neighbours& neighbours);

    double flops() const { return flops_; }

private:
    using Weigh = void (*)(const Products& products, const Neighbours& neighbours, void* out);
    template <class Item, class Value, class Weight>
    static void weigh(const Products& products, const Neighbours& neighbours, void* out);
    template <class Weight>
    void choose_road(const std::vector<Weight>& weights);
    void* typed(const Neighbours& neighbours);
    void* general(const Neighbours& neighbours, std::uint32_t& kinds);
    Element combined(const Element& weight, const Element& element);
    Element multiplied(const Element& weight, const Element& element);

    Activation& run_;
    Applied& applied_;
    const Space& data_;
    const Space& mask_;
    std::vector<Element> weights_;
    std::vector<std::int32_t> integers_; ///< the mask, if it holds nothing else
    std::vector<double> reals_;
    Weigh weigh_ = nullptr; ///< a loop over packed data
    bool weighs_reals_ = false;
    double flops_ = 0;
};

} // namespace tessor
