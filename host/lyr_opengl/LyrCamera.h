#pragma once

#include <lyr_core/LyrLinkProperty.h>
#include <lyr_core/LyrObject.h>
#include <lyr_core/LyrSingleValueProperty.h>
#include <lyr_opengl/LyrOpenglExport.h>

/** What a view looks through. Takes on the role Lyr::Camera in prepareRoles().
 *
 *  `RenderedObjectList` holds what is drawn for the camera; who puts an object in takes it out again, so the list is
 * neither copied nor stored. `DotsPerInch` is the resolution of the view's screen, (0, 0) if it is not known. */
class LYR_OPENGL_EXPORT LyrCamera : public LyrObject {
public:
    LyrCamera();
    LyrCamera(const LyrCamera& other);

    static const LyrMetaClass& metaClass();
    const LyrMetaClass& getMetaClass() const override;

private:
    void build();

    LyrObjectHardLinkListOP mRenderedObjects;
    LyrSingleValueOP<LyrSingleValuePropertyIF<LyrVector2<float>>> mDotsPerInch;
};
