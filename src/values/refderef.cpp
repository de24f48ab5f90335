#include "values/refderef.h"

#include "values/layout.h"

#include <cstring>

namespace tessor {

void (*close_stream)(void* block) noexcept = nullptr;
void (*release_link)(MeaningTable* link) noexcept = nullptr;

namespace {

bool is_name_cell(std::int32_t rank) {
    return rank == kind::ADDRESS || rank == kind::OPERATOR || rank == kind::VARIABLE
           || rank == kind::LABEL;
}

// The address of a local on the stack counts nothing: the local goes with its frame.
bool is_stack_address(const Space& space) {
    return space.rank == kind::ADDRESS && (space.type & ISLOCAL) != 0;
}

void count_up_if(void* block) {
    if (block)
        count_up(block);
}

// Blocks that died and whose own references are still to be given up. A dead block's header has
// done its work, so the list runs through the headers: no storage is needed to release storage.
class Dying {
public:
    void push(Space* block) {
        std::memcpy(link_of(block), &first_, sizeof first_);
        first_ = block;
    }
    Space* pop() {
        Space* block = first_;
        if (block)
            std::memcpy(&first_, link_of(block), sizeof first_);
        return block;
    }

private:
    static void* link_of(Space* block) { return &header_of(block); }
    Space* first_ = nullptr;
};

void drop_enclosed(Space* block, Dying& dying) noexcept {
    if (block && count_down(block))
        dying.push(block);
}

void drop_link(MeaningTable* link) noexcept {
    if (link && release_link)
        release_link(link);
}

void drop_stream(void* block) noexcept {
    if (!block || !count_down(block))
        return;
    if (close_stream)
        close_stream(block);
    free_block(block);
}

void drop_space(Space& space, Dying& dying) noexcept;

// A cell that stands in an element block; both records have the same size and first word.
Space& as_cell(DataElement& element) {
    return reinterpret_cast<Space&>(element);
}

void drop_element(DataElement& element, Dying& dying) noexcept {
    switch (element.tag) {
    case tag::subarray:
        release_block(element.name);
        drop_enclosed(element.subarray, dying);
        break;
    case tag::octonion:
        release_block(element.name);
        release_block(element.octonion);
        break;
    case tag::ascii:
    case tag::unicode:
    case tag::integer:
    case tag::real:
    case tag::complex: release_block(element.name); break;
    case tag::file:
        release_block(element.path);
        release_block(element.second_text);
        drop_stream(element.stream);
        drop_enclosed(element.template_space, dying);
        break;
    default:
        if (element.tag < 0)
            drop_space(as_cell(element), dying);
        break;
    }
}

void drop_elements(DataElement* elements, std::uint32_t n, Dying& dying) noexcept {
    for (std::uint32_t i = 0; i < n; ++i)
        drop_element(elements[i], dying);
}

void drop_data(void* block, std::uint32_t n, Dying& dying) noexcept {
    if (!block || !count_down(block))
        return;
    if (storage_of(block) == Storage::elements)
        drop_elements(static_cast<DataElement*>(block), n, dying);
    free_block(block);
}

void drop_shape(Space& space, Dying& dying) noexcept {
    drop_data(space.shape_pointer, static_cast<std::uint32_t>(space.rank), dying);
    space.shape_pointer = nullptr;
}

void drop_space(Space& space, Dying& dying) noexcept {
    if (space.type & ISINPLACE)
        return;
    if (space.rank >= 0) {
        drop_shape(space, dying);
        drop_data(space.data_pointer, space.elements, dying);
        space.data_pointer = nullptr;
        return;
    }
    release_block(space.name);
    space.name = nullptr;
    switch (space.rank) {
    case kind::FUNCTION: drop_enclosed(space.body, dying); break;
    case kind::LOCAL_VARIABLE:
    case kind::LOCAL_ADDRESS: release_block(space.data_pointer); break;
    case kind::VARIABLE:
    case kind::ADDRESS:
    case kind::OPERATOR:
    case kind::LABEL:
        if (is_stack_address(space))
            break;
        drop_link(space.table);
        space.table = nullptr;
        drop_enclosed(space.target, dying);
        break;
    default: break;
    }
    space.data_pointer = nullptr;
}

bool is_body(const Space* block) {
    return block->rank == kind::FUNCTION && block->body == block;
}

// The cells of a dead body. Its header is a copy of the function's Space that counts nothing but
// the record of YIELD.
void drop_cells(Space* body, Dying& dying) noexcept {
    release_block(body->yielded);
    Space* cell = body + 1;
    for (; !is_end(*cell); ++cell)
        drop_space(*cell, dying);
    release_block(cell->name); // the function's text, kept by RESULT
}

void run(Dying& dying) noexcept {
    while (Space* block = dying.pop()) {
        if (is_body(block))
            drop_cells(block, dying);
        else
            drop_space(*block, dying);
        free_block(block);
    }
}

} // namespace

void referencepoint_blocks(const Space& space) {
    if (space.rank >= 0) {
        count_up_if(space.shape_pointer);
        count_up_if(space.data_pointer);
        return;
    }
    if (is_stack_address(space))
        return;
    count_up_if(space.name);
    if (is_name_cell(space.rank))
        count_up_if(space.table);
    count_up_if(space.data_pointer);
}

void dereferencepoint_blocks(Space& space) noexcept {
    if (space.rank >= 0) {
        release_shape(space);
        release_data(space.data_pointer, space.elements);
        space.data_pointer = nullptr;
        return;
    }
    Dying dying;
    drop_space(space, dying);
    run(dying);
}

void referencedataelems(const DataElement* elements, std::uint32_t n) {
    for (std::uint32_t i = 0; i < n; ++i) {
        const DataElement& element = elements[i];
        switch (element.tag) {
        case tag::subarray:
            count_up_if(element.name);
            count_up_if(element.subarray);
            break;
        case tag::octonion:
            count_up_if(element.name);
            count_up_if(element.octonion);
            break;
        case tag::ascii:
        case tag::unicode:
        case tag::integer:
        case tag::real:
        case tag::complex: count_up_if(element.name); break;
        case tag::file:
            count_up_if(element.path);
            count_up_if(element.stream);
            count_up_if(element.second_text);
            count_up_if(element.template_space);
            break;
        default:
            if (element.tag < 0)
                referencepoint(reinterpret_cast<const Space*>(&element));
            break;
        }
    }
}

void dereferencedataelems(DataElement* elements, std::uint32_t n) noexcept {
    Dying dying;
    drop_elements(elements, n, dying);
    run(dying);
}

void free_data(void* block, std::uint32_t n) noexcept {
    if (storage_of(block) == Storage::elements) {
        Dying dying;
        drop_elements(static_cast<DataElement*>(block), n, dying);
        run(dying);
    }
    free_block(block);
}

void release_enclosed(Space* block) noexcept {
    Dying dying;
    drop_enclosed(block, dying);
    run(dying);
}

void release_body(Space* body) noexcept {
    release_enclosed(body);
}

void cleanup(Space* cells) noexcept {
    for (Space* cell = cells; !is_end(*cell); ++cell)
        dereferencepoint(cell);
}

Space* copyfun(const Space& function) {
    const std::uint64_t n = std::uint64_t{function.elements} + 1;
    auto* body = static_cast<Space*>(allocate_items(n, sizeof(Space)));
    std::memcpy(body, function.body, n * sizeof(Space));
    body->body = body;
    body->yielded = nullptr;
    Space* cell = body + 1;
    for (; !is_end(*cell); ++cell)
        referencepoint(cell);
    cell->name = nullptr;
    return body;
}

} // namespace tessor
