#pragma once

#include <lyr_core/LyrMetaClass.h>

/** Gives every legend render object, present and future, a handler for the legends of layers, and takes the handlers
 * out again when it goes. */
class AnnotationHandlerHook : public LyrMetaClass::FactoryHook {
public:
    AnnotationHandlerHook();
    ~AnnotationHandlerHook() override;

    void objectCreated(LyrClass* object) override;
    void objectDestroyed(LyrClass* object) override;
};
