// Elements of any value, whatever its layout, and the making of new ones.
//
// Element is one element by value, unpacked: what cold code reads and makes. It borrows: a name, a
// subarray or a file that it points to belongs to the block it was read from, until it is given to
// a builder or stored.
#pragma once

#include "values/layout.h"

namespace tessor {

struct Element {
    std::int32_t tag = tag::none;
    std::uint16_t form = form::number;
    std::uint16_t marks = 0;
    char* name = nullptr; ///< named constants
    union {
        std::uint8_t character;
        std::uint16_t unicode;
        std::int32_t integer;
        Space* subarray;
        const DataElement* other; ///< files, functions and whatever else stands in an element block
        double c[8] = {};         ///< real and hypercomplex components
    };

    bool named() const { return (marks & mark::named) != 0; }
};

Element integer_element(std::int32_t value, std::uint16_t form = form::number,
                        std::uint16_t marks = 0);
Element real_element(double value, std::uint16_t form = form::number, std::uint16_t marks = 0);
Element character_element(std::uint8_t value, std::uint16_t form = form::text,
                          std::uint16_t marks = 0);

/// Element i of a value that has data (a scalar's is number 0).
Element element_at(const Space& space, std::uint32_t i);
/// Element i of a data block.
Element element_of(const void* block, std::uint32_t i);
Element unpack(const DataElement& element);

/// Tag of the first element, without unpacking it.
std::int32_t first_tag(const Space& space);

/// True if the value has elements to read: in place, or with a data block.
inline bool has_data(const Space& space) {
    return (space.type & ISINPLACE) != 0 || space.data_pointer != nullptr;
}

/// Extent of axis i of an array.
inline std::int32_t extent(const Space& space, std::int32_t axis) {
    const void* shape = space.shape_pointer;
    if (storage_of(shape) == Storage::integer)
        return static_cast<const std::int32_t*>(shape)[axis];
    return static_cast<const DataElement*>(shape)[axis].integer;
}

/// A block of `rank` integer elements, form 8; the extents are the caller's to fill in.
std::int32_t* new_shape(std::int32_t rank);

// Storing, with the count of what the element refers to taken over from it.

/// Writes an element into a slot whose old contents are void. An octonion gets a payload block.
void store(DataElement& slot, const Element& element);

/// Gives the value a private block of DataElements (count 1), and returns it. The value must have
/// data and be no cell. Works on scalars in place too, which then no longer are.
DataElement* own_elements(Space& space);

/// Turns truth, degree, quotient and promoted storage into one that typed loops know (integer,
/// real, elements), in a private block. Nothing happens to any other value.
void widen(Space& space);

// Whole values. Each sets every field; the old contents of the record are void.

/// A scalar in place; `value` is the last word of the record.
inline void make_in_place(Space& space, std::int32_t tag, std::uint16_t form, std::uint16_t marks,
                          std::uint64_t value) {
    put_word(space, 0, plain_word(tag));
    put_word(space, 1, 0);
    put_word(space, 2, word_of(0, 1));
    put_word(space, 3, look_word(form, marks, tag));
    put_word(space, 4, value);
}
inline void make_integer(Space& space, std::int32_t value, std::uint16_t form = form::number,
                         std::uint16_t marks = 0) {
    make_in_place(space, tag::integer, form, marks, word_of(static_cast<std::uint32_t>(value), 0));
}
inline void make_real(Space& space, double value, std::uint16_t form = form::number,
                      std::uint16_t marks = 0) {
    make_in_place(space, tag::real, form, marks, std::bit_cast<std::uint64_t>(value));
}
void make_character(Space& space, std::uint8_t value, std::uint16_t form = form::text,
                    std::uint16_t marks = 0);
/// A scalar of any element, taken over. In place if it can be.
void make_scalar(Space& space, const Element& element);
/// The same of an element that stays where it was: its counts go up.
void copy_scalar(Space& space, const Element& element);
/// Takes a scalar with a block of its own over into its Space, if it can be in place.
void settle_scalar(Space& space);
/// Empty vector: depth 0, a shape block with 0, extra type bits as given. All of them share one
/// permanent shape block, so this can't fail.
void make_empty(Space& space, std::uint32_t extra = 0) noexcept;
/// A text: an empty text, a scalar for one byte, else a vector.
void make_text(Space& space, const char* bytes, std::size_t length);
/// Frame of a vector of n elements over a block that is taken over; depth 1.
void make_vector(Space& space, std::uint32_t n, void* data, std::uint32_t kinds);
/// A counted block of one Space, for a subarray element or a name; the value is moved into it, and
/// stays where it was if there is no block.
Space* enclose(const Space& space);

/// Collects elements one after the other into a block: packed while all are alike, DataElements
/// from the first that differs on. Takes over the counts of what it is given, and gives them back
/// if it dies before finish. An element that there is no room for stays the caller's.
class ArrayBuilder {
public:
    explicit ArrayBuilder(std::uint64_t expected = 0);
    ArrayBuilder(const ArrayBuilder&) = delete;
    ArrayBuilder& operator=(const ArrayBuilder&) = delete;
    ArrayBuilder(ArrayBuilder&& other) noexcept;
    ArrayBuilder& operator=(ArrayBuilder&& other) noexcept;
    ~ArrayBuilder();

    void add(const Element& element);
    void add_character(std::uint8_t value, std::uint16_t form = form::text);
    void add_integer(std::int32_t value, std::uint16_t form = form::number);
    void add_real(double value, std::uint16_t form = form::number);
    /// The element of a scalar in place. The fastest way for one after the other that are alike.
    void add_in_place(const Space& scalar) {
        if (size_ == capacity_ || get_word(scalar, 3) != look_) {
            add_unlike(scalar);
            return;
        }
        switch (scalar.tag) {
        case tag::integer: static_cast<std::int32_t*>(block_)[size_++] = scalar.integer; break;
        case tag::real: static_cast<double*>(block_)[size_++] = scalar.real; break;
        default: static_cast<std::uint8_t*>(block_)[size_++] = scalar.character; break;
        }
    }
    /// Takes copies of n elements of a block, from the one at `first` on.
    void add_copies(const void* block, std::uint32_t n, std::uint32_t first = 0);
    /// A subarray; the value is moved into a block of its own, and stays where it was if there is
    /// no room for it.
    void add_enclosed(const Space& value, std::uint16_t form = form::number,
                      std::uint16_t marks = 0);

    std::uint32_t size() const { return size_; }
    /// The HAS bits (and STRUCTURED) of what was added.
    std::uint32_t kinds() const { return kinds_; }
    /// The block, cut to size, null if nothing was added. The builder is empty again.
    void* finish() noexcept;

private:
    void grow(std::uint64_t capacity);
    void add_unlike(const Space& scalar);
    void add_items(const void* items, std::uint32_t n, std::uint32_t word);
    bool add_bytes(const std::uint8_t* bytes, std::uint32_t n, const Layout& layout);
    void to_elements();
    void clear() noexcept;
    template <class T>
    void add_packed(T value, Storage storage, std::int32_t tag, std::uint16_t form);

    void* block_ = nullptr;
    std::uint32_t size_ = 0;
    std::uint64_t capacity_ = 0;
    std::uint64_t expected_ = 0;
    std::uint32_t word_ = 0; ///< layout word
    std::uint32_t kinds_ = 0;
    std::uint64_t look_ = 0; ///< of scalars in place that go straight into the block
};

} // namespace tessor
