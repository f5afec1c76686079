#include <lyr_core/LyrLinkProperty.h>
#include <lyr_core/LyrObject.h>

namespace {

/** Brings up the framework's own classes when the library is loaded, so that they can be created by name. */
[[maybe_unused]] const LyrMetaClass* const hostClasses[] = {
    &LyrClass::metaClass(),
    &LyrObject::metaClass(),
    &LyrProperty::metaClass(),
    &LyrObjectHardLinkOP::metaClass(),
    &LyrObjectSoftLinkOP::metaClass(),
    &LyrObjectParentLinkOP::metaClass(),
    &LyrObjectHardLinkListOP::metaClass(),
    &LyrObjectSoftLinkListOP::metaClass(),
    &LyrObjectParentLinkListOP::metaClass(),
};

}  // namespace
