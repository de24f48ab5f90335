// Instructions that rearrange elements without computing on them.
//
// Axis 0 is the first extent; its elements stand side by side. None of these takes an axis: FIRST,
// REST and COMPRESSLASTAXIS work on the last one, COMPRESS on the first. Values that are no arrays
// (functions, addresses, marks) stay as they are unless a number is named.
#pragma once

#include "engine/machine.h"

namespace tessor {

Next ravel_body(Activation& run); ///< RAVEL: a vector of all elements in block order

/// ENCLOSE: a one-element vector that holds the value; a scalar stays. ATOM, a variant of the cell,
/// makes a value that counts as a scalar, of any value.
Next enclose_body(Activation& run);
/// DISCLOSE: the value that a one-element nested array holds; 973 for several elements.
Next disclose(Activation& run);

/// FIRST: the first element, or slice of the last axis; of an empty text a blank, of any other
/// empty value 0. FIRSTONE: the very first element, disclosed. 994 for an element that can't stand
/// alone.
Next first(Activation& run);
/// REST: what FIRST leaves. RREST: an axis that shrinks to 1 goes.
Next rest(Activation& run);

Next reverse(Activation& run);   ///< MIRROR, REVERSE: all elements end for end; 994
Next transpose(Activation& run); ///< all axes reversed; 159 for an address, 970 above 8 axes

/// CATENATE: the elements of two scalars or vectors as one vector. 991 and 994 for others.
Next catenate(Activation& run);

/// COMPRESS, COMPRESSLASTAXIS: data and mask; what stands at mask elements above 0. 4, 31.
Next compress(Activation& run);
Next compresslastaxis(Activation& run);
/// REPLICATE: data and count; all elements so many times over, as a vector. 10, 113, 146, 994.
Next replicate(Activation& run);

/// DEAL: range and count; so many different integers below the range, by draws. The operands are
/// swapped first, also where it fails: 42, 43, 144.
Next deal(Activation& run);

} // namespace tessor
