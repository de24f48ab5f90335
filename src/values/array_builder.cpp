#include "values/array.h"
#include "values/refderef.h"

#include <algorithm>
#include <cstring>
#include <type_traits>
#include <utility>

namespace tessor {

namespace {

bool packs(const Element& element) {
    return tag_storage(element.tag) != Storage::elements && !element.name
           && (element.marks & ~packed_marks) == 0;
}

} // namespace

ArrayBuilder::ArrayBuilder(std::uint64_t expected) : expected_(expected) {}

ArrayBuilder::ArrayBuilder(ArrayBuilder&& other) noexcept {
    *this = std::move(other);
}

ArrayBuilder& ArrayBuilder::operator=(ArrayBuilder&& other) noexcept {
    if (this != &other) {
        clear();
        block_ = std::exchange(other.block_, nullptr);
        size_ = std::exchange(other.size_, 0);
        capacity_ = std::exchange(other.capacity_, 0);
        expected_ = std::exchange(other.expected_, 0);
        word_ = std::exchange(other.word_, 0);
        kinds_ = std::exchange(other.kinds_, 0);
        look_ = std::exchange(other.look_, 0);
    }
    return *this;
}

ArrayBuilder::~ArrayBuilder() {
    clear();
}

void ArrayBuilder::clear() noexcept {
    if (block_)
        release_data(block_, size_);
    block_ = nullptr;
    size_ = 0;
    capacity_ = 0;
    kinds_ = 0;
    look_ = 0;
}

void ArrayBuilder::grow(std::uint64_t capacity) {
    const std::size_t item = item_size(static_cast<Storage>(word_ & 0xf));
    if (block_) {
        block_ = Reallocate(block_, capacity * item);
    } else {
        capacity = std::max(capacity, expected_);
        block_ = allocate_items(capacity, item, word_);
    }
    capacity_ = block_capacity(block_) / item;
}

void ArrayBuilder::to_elements() {
    if (storage_of(block_) == Storage::elements)
        return;
    const std::uint64_t capacity = std::max<std::uint64_t>(expected_, std::uint64_t{size_} * 2);
    BlockHandle wide(allocate_items(capacity, sizeof(DataElement)));
    auto* slots = wide.as<DataElement>();
    std::uint32_t done = 0;
    try {
        for (; done < size_; ++done)
            store(slots[done], element_of(block_, done));
    } catch (...) {
        dereferencedataelems(slots, done);
        throw;
    }
    release_block(block_);
    block_ = wide.release();
    word_ = 0;
    look_ = 0;
    capacity_ = block_capacity(block_) / sizeof(DataElement);
}

template <class T>
void ArrayBuilder::add_packed(T value, Storage storage, std::int32_t tag, std::uint16_t form) {
    const std::uint32_t word = encode({storage, form, 0});
    if (size_ == 0 && !block_) {
        word_ = word;
        grow(8);
    }
    if (word_ != word) {
        Element element;
        element.tag = tag;
        element.form = form;
        if constexpr (std::is_same_v<T, double>)
            element.c[0] = value;
        else if constexpr (std::is_same_v<T, std::int32_t>)
            element.integer = value;
        else
            element.character = value;
        add(element);
        return;
    }
    if (size_ == capacity_)
        grow(capacity_ * 2);
    static_cast<T*>(block_)[size_++] = value;
    kinds_ |= kind_bit(tag);
}

void ArrayBuilder::add_character(std::uint8_t value, std::uint16_t form) {
    add_packed(value, Storage::character, tag::ascii, form);
}

void ArrayBuilder::add_integer(std::int32_t value, std::uint16_t form) {
    add_packed(value, Storage::integer, tag::integer, form);
}

void ArrayBuilder::add_real(double value, std::uint16_t form) {
    add_packed(value, Storage::real, tag::real, form);
}

void ArrayBuilder::add(const Element& element) {
    const Storage storage = packs(element) ? tag_storage(element.tag) : Storage::elements;
    const std::uint32_t word =
        storage == Storage::elements ? 0 : encode({storage, element.form, element.marks});
    if (!block_) {
        word_ = word;
        grow(expected_ ? expected_ : 1);
    } else if (word_ != word) {
        to_elements();
    }
    if (size_ == capacity_)
        grow(std::max<std::uint64_t>(8, capacity_ * 2));
    switch (static_cast<Storage>(word_ & 0xf)) {
    case Storage::elements: store(static_cast<DataElement*>(block_)[size_], element); break;
    case Storage::character: static_cast<std::uint8_t*>(block_)[size_] = element.character; break;
    case Storage::integer: static_cast<std::int32_t*>(block_)[size_] = element.integer; break;
    default: {
        const int width = components_of(element.tag);
        std::copy_n(element.c, width,
                    static_cast<double*>(block_)
                        + std::size_t{size_} * static_cast<std::size_t>(width));
        break;
    }
    }
    ++size_;
    kinds_ |= kind_bit(element.tag);
}

void ArrayBuilder::add_unlike(const Space& scalar) {
    add(element_at(scalar, 0));
    look_ = word_ != 0 ? get_word(scalar, 3) : 0;
}

// Items of one packed layout, in one piece.
void ArrayBuilder::add_items(const void* items, std::uint32_t n, std::uint32_t word) {
    if (!block_)
        word_ = word;
    const std::uint64_t size = std::uint64_t{size_} + n;
    if (!block_ || size > capacity_)
        grow(std::max(size, capacity_ * 2));
    const Storage storage = storage_of(block_);
    const std::size_t item = item_size(storage);
    std::memcpy(static_cast<char*>(block_) + size_ * item, items, n * item);
    size_ += n;
    kinds_ |= kind_bit(storage_tag(storage));
}

// Truth values and degrees of a byte each, as the numbers that they are; false if the block can't
// take them so.
bool ArrayBuilder::add_bytes(const std::uint8_t* bytes, std::uint32_t n, const Layout& layout) {
    const bool truth = layout.storage == Storage::truth;
    const Storage storage = truth ? Storage::integer : Storage::real;
    const std::uint32_t word = encode({storage, layout.form, layout.marks});
    if (block_ && word_ != word)
        return false;
    word_ = word;
    const std::uint64_t size = std::uint64_t{size_} + n;
    if (!block_ || size > capacity_)
        grow(std::max(size, capacity_ * 2));
    if (truth)
        std::copy_n(bytes, n, static_cast<std::int32_t*>(block_) + size_);
    else
        std::copy_n(bytes, n, static_cast<double*>(block_) + size_);
    size_ += n;
    kinds_ |= kind_bit(storage_tag(storage));
    return true;
}

void ArrayBuilder::add_copies(const void* block, std::uint32_t n, std::uint32_t first) {
    const Layout layout = layout_of(block);
    const Storage storage = layout.storage;
    const bool plain = storage != Storage::elements && tag_storage(storage_tag(storage)) == storage;
    const char* from = static_cast<const char*>(block) + first * item_size(storage);
    if (n != 0 && plain && (!block_ || word_ == header_of(block).layout)) {
        add_items(from, n, header_of(block).layout);
        return;
    }
    const bool bytes = storage == Storage::truth || storage == Storage::degree;
    if (n != 0 && bytes && add_bytes(reinterpret_cast<const std::uint8_t*>(from), n, layout))
        return;
    for (std::uint32_t i = first; i < first + n; ++i) {
        const Element element = element_of(block, i);
        add(element);
        if (storage == Storage::elements && element.tag != tag::octonion)
            referencedataelems(static_cast<const DataElement*>(block) + i, 1);
        else if (element.name)
            count_up(element.name);
    }
}

void ArrayBuilder::add_enclosed(const Space& value, std::uint16_t form, std::uint16_t marks) {
    Element element;
    element.tag = tag::subarray;
    element.form = form;
    element.marks = marks;
    element.subarray = enclose(value);
    try {
        add(element);
    } catch (...) {
        free_block(element.subarray);
        throw;
    }
}

void* ArrayBuilder::finish() noexcept {
    void* block = nullptr;
    if (size_ != 0) {
        const std::size_t item = item_size(storage_of(block_));
        block = Reallocate(std::exchange(block_, nullptr), size_ * item);
    }
    clear();
    return block;
}

} // namespace tessor
