#pragma once

#include <lyr_core/LyrError.h>
#include <lyr_core/LyrHostIdentifiers.h>

#include <memory>

/** Makes the private part of an object and registers its properties with the object. Null, and reported, where memory
 * ran out: the object then stays without properties. A registration that failed is reported as well. */
template <class Private, class Owner>
std::unique_ptr<Private> buildPrivate(Owner& owner) {
    std::unique_ptr<Private> part;
    try {
        part.reset(new Private);
    } catch (...) {
        // A default found no memory: the same as a part that found none.
    }
    const Lyrenum result = part ? part->registerProperties(owner) : Lyr::AllocationFailed;
    if (result != Lyrenum(1)) {
        LyrError::emitError(LyrError::Message(&owner, result));
    }
    return part;
}
