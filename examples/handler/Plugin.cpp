#include "DepthHandler.h"

#include <colortable/ColortableIdentifiers.h>
#include <colortable/LibraryInit.h>
#include <colortable/legend/LyrColorLookupTableRenderSettings.h>
#include <colortable/model/LyrColorLookupTable.h>
#include <lyr_core/LyrClassManager.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrMetaClass.h>
#include <lyr_core/LyrModule.h>
#include <lyr_core/LyrObjectLink.h>
#include <lyr_core/LyrPropertyPtr.h>
#include <lyr_core/LyrVector2.h>

#include <memory>
#include <string_view>
#include <utility>
#include <vector>

namespace {

constexpr const char* RENDER_OBJECT = "LyrColorLookupTableRenderObject";

/** The render object of each view that is there already. */
std::vector<LyrClass*> renderObjects() {
    const LyrClassManager::SearchPattern pattern(RENDER_OBJECT);
    std::vector<LyrClass*> objects(static_cast<std::size_t>(LyrClassManager::getObjectCount(pattern)));
    objects.resize(static_cast<std::size_t>(
        LyrClassManager::findObjects(objects.data(), static_cast<long long>(objects.size()), pattern)));
    return objects;
}

/** Replaces a list whole. False for a property that is missing, of another type of value, or refuses. */
template <class T>
bool setList(LyrObject* object, Lyrenum id, std::vector<T> values) {
    LyrValueArrayOPCache<T> list;
    list.items() = std::move(values);
    return list.store(object, id);
}

/** A section of one colour: one control point, at the section's beginning, for each channel. */
LyrObjectPtr makeSection(float red, float green, float blue) {
    const LyrObjectRefPtr section("LyrColorLookupTable::Section", Lyr::TransientScope);
    using Points = std::vector<LyrVector2<float>>;
    lyrSetValue<Lyrenum>(section.get(), Lyr::Type, Lyr::Constant);
    setList(section.get(), Lyr::PointListRed, Points{{0.0f, red}});
    setList(section.get(), Lyr::PointListGreen, Points{{0.0f, green}});
    setList(section.get(), Lyr::PointListBlue, Points{{0.0f, blue}});
    setList(section.get(), Lyr::PointListAlpha, Points{{0.0f, 1.0f}});
    return section;
}

/** Too shallow below 1 mm, good up to 3 mm, too deep above. Nobody listens yet, so that undo hears nothing of it. */
LyrObject* makeTable() {
    auto* table = new LyrColorLookupTable;
    const LyrObjectPtr sections[] = {makeSection(0.85f, 0.25f, 0.2f), makeSection(0.25f, 0.65f, 0.35f),
                                     makeSection(0.2f, 0.45f, 0.85f)};
    std::vector<LyrObjectLink> links;
    for (const LyrObjectPtr& section : sections) {
        links.emplace_back(section.get(), nullptr, -1);
    }
    setList(table, Lyr::PositionList, std::vector<float>{1.0f, 3.0f});
    setList(table, Lyr::SectionList, std::move(links));
    lyrSetValue<Lyrenum>(table, Lyr::Quantity, Lyr::Length);
    return table;
}

/** Settings of a bar on the right with a caption. */
LyrObject* makeSettings() {
    auto* settings = new LyrColorLookupTableRenderSettings;
    lyrSetValue<Lyrenum>(settings, Lyr::Position, Lyr::Right);
    lyrSetValue<const char*>(settings, Lyrenum("DescriptionTemplate", true), "Depth");
    return settings;
}

/** Gives each view a handler: those that are there, and those that come later. Takes the handlers back in the end. */
class Views : public LyrMetaClass::FactoryHook {
public:
    Views() {
        LyrMetaClass::addFactoryHook(RENDER_OBJECT, this);
        for (LyrClass* object : renderObjects()) {
            objectCreated(object);
        }
    }
    ~Views() override {
        LyrMetaClass::removeFactoryHook(RENDER_OBJECT, this);
        for (LyrClass* object : renderObjects()) {
            objectDestroyed(object);
        }
    }

    void objectCreated(LyrClass* object) override {
        auto* owner = dynamic_cast<LyrObject*>(object);
        LyrValueArrayOPCache<LyrObjectLink> list;
        if (list.load(owner, Lyr::AnnotationHandlerList)) {
            const LyrObjectPtr handler(new DepthHandler(mTable.get(), mSettings.get()));
            list.items().emplace_back(handler.get(), nullptr, -1);
            list.store(owner, Lyr::AnnotationHandlerList);
        }
    }
    void objectDestroyed(LyrClass* object) override {
        auto* owner = dynamic_cast<LyrObject*>(object);
        LyrValueArrayOPCache<LyrObjectLink> list;
        const auto isOurs = [](const LyrObjectLink& link) {
            return link.getLink() && std::string_view(link.getLink()->getMetaClass().getModule()) == MODULE_NAME;
        };
        if (list.load(owner, Lyr::AnnotationHandlerList) && std::erase_if(list.items(), isOurs) > 0) {
            list.store(owner, Lyr::AnnotationHandlerList);
        }
    }

private:
    LyrObjectPtr mTable{makeTable()};
    LyrObjectPtr mSettings{makeSettings()};
};

// Loading the module registers its class; unloading takes it back.
[[maybe_unused]] const LyrMetaClass& sHandlerClass = DepthHandler::metaClass();
std::unique_ptr<Views> sViews;
int sUsers = 0;

bool isReady() {
    return true;
}

void init() {
    if (++sUsers == 1) {
        LYQCOLORTABLE::LibraryInit::init();
        sViews = std::make_unique<Views>();
    }
}

void cleanUp() {
    if (sUsers-- == 1) {
        sViews.reset();
        LYQCOLORTABLE::LibraryInit::cleanup();
    }
}

}  // namespace

LYR_DEFINE_MODULE("example_handler", isReady, init, cleanUp)
