#pragma once

#include <colortable/LysColortableExport.h>
#include <lyr_core/LyrRoleManager.h>

/** Gives every camera a LyrColorLookupTableRenderObject in its list of rendered objects, those that are there as well,
 * and takes it out again when the object stops being a camera, or the hook goes. */
class LYS_COLORTABLE_EXPORT LyrColorTableCameraRoleHook : public LyrObject::RoleHook {
public:
    LyrColorTableCameraRoleHook();
    ~LyrColorTableCameraRoleHook() override;

    /** False if no render object could be made: the camera has no legends. */
    bool enterRoleHook(const LyrObjectLink& camera) override;
    void leaveRoleHook(const LyrObjectLink& camera) override;
};
