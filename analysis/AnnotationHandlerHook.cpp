#include <analysis/AnalysisIdentifiers.h>
#include <analysis/AnnotationHandlerHook_p.h>
#include <analysis/LyrLayerAnnotationHandler.h>
#include <colortable/ColortableIdentifiers.h>
#include <lyr_core/LyrClassManager.h>
#include <lyr_core/LyrLinkProperty.h>
#include <lyr_core/LyrObjectPtr.h>
#include <lyr_core/LyrPropertyPtr.h>

#include <cstring>
#include <vector>

namespace {

constexpr const char* RENDER_OBJECT = "LyrColorLookupTableRenderObject";

std::vector<LyrClass*> renderObjects() {
    const LyrClassManager::SearchPattern pattern(RENDER_OBJECT);
    std::vector<LyrClass*> objects(static_cast<std::size_t>(LyrClassManager::getObjectCount(pattern)));
    objects.resize(static_cast<std::size_t>(
        LyrClassManager::findObjects(objects.data(), static_cast<long long>(objects.size()), pattern)));
    return objects;
}

}  // namespace

AnnotationHandlerHook::AnnotationHandlerHook() {
    LyrMetaClass::addFactoryHook(RENDER_OBJECT, this);
    for (LyrClass* object : renderObjects()) {
        objectCreated(object);
    }
}

AnnotationHandlerHook::~AnnotationHandlerHook() {
    LyrMetaClass::removeFactoryHook(RENDER_OBJECT, this);
    for (LyrClass* object : renderObjects()) {
        objectDestroyed(object);
    }
}

void AnnotationHandlerHook::objectCreated(LyrClass* object) {
    const LyrValueArrayOPPtr<LyrLinkListIF> list(dynamic_cast<LyrObject*>(object), Lyr::AnnotationHandlerList);
    if (list) {
        const LyrObjectPtr handler(new LyrLayerAnnotationHandler);
        const LyrObjectLink link(handler.get(), nullptr, -1);
        const long long end = list->getArraySize();
        list->insertArrayItems(end, end, &link);
    }
}

void AnnotationHandlerHook::objectDestroyed(LyrClass* object) {
    auto* owner = dynamic_cast<LyrObject*>(object);
    LyrValueArrayOPCache<LyrObjectLink> list;
    if (!list.load(owner, Lyr::AnnotationHandlerList)) {
        return;
    }
    const auto isOurs = [](const LyrObjectLink& link) {
        return link.getLink() && std::strcmp(link.getLink()->getMetaClass().getModule(), LYS_ANALYSIS_MODULE) == 0;
    };
    if (std::erase_if(list.items(), isOurs) > 0) {
        list.store(owner, Lyr::AnnotationHandlerList);
    }
}
