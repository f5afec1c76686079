#include <colortable/ColortableIdentifiers.h>
#include <colortable/model/LyrColorLookupTable.h>
#include <colortable/model/LyrColorLookupTableSection.h>
#include <colortable/presets/LyqPresetColortableHandler.h>
#include <colortable/presets/LyqPresetColortableSaveDialogExtensionWidget.h>
#include <lyr_core/LyrError.h>
#include <lyr_core/LyrMetaClass.h>
#include <lyr_core/LyrPropertyPtr.h>

#include <QCoreApplication>
#include <QObject>

namespace {

constexpr const char* PROXY_CLASS = "LyrPresetColortableProxyObject";

/** Built-in names in their order. The second one's table is the default table with a reversed rainbow. */
constexpr const char* BUILT_IN[] = {QT_TRANSLATE_NOOP("QObject", "Rainbow"),
                                    QT_TRANSLATE_NOOP("QObject", "Reverse Rainbow")};

const LyrStringList& builtInNames() {
    static const LyrStringList names{LyrString(BUILT_IN[0]), LyrString(BUILT_IN[1])};
    return names;
}

using FloatPair = LyrValuePair<float>;

class HandlerFactory : public LyrMetaClass::Factory {
public:
    // Category and name are set afterwards.
    LyrClass* create(void* storage) const override {
        return storage ? new (storage) LyqPresetColortableHandler(-1, LyrString(""))
                       : new LyqPresetColortableHandler(-1, LyrString(""));
    }
    LyrClass* createCopy(const LyrClass*, void*) const override { return nullptr; }
    bool assign(LyrClass*, const LyrClass*) const override { return false; }
    bool isStorable() const override { return false; }
};

bool wrongType(const LyrClass* source) {
    LyrError::emitError(LyrError::Message(source, Lyr::WrongType));
    return false;
}

/** False if the list of sections holds anything else: files may. */
bool holdsSectionsOnly(const LyrObject& table) {
    LyrValueArrayOPCache<LyrObjectLink> sections;
    sections.load(&table, Lyr::SectionList);
    for (const LyrObjectLink& link : sections.items()) {
        const LyrObject* section = link.getLink();
        if (section && !section->getMetaClass().isOfType(LyrColorLookupTable::Section::metaClass())) {
            return false;
        }
    }
    return true;
}

/** Copies a stored table into the current one. A link to nothing, or to no table, leaves that one as it is. */
bool copyTable(const LyrObjectLink& stored, LyrObject& current, const LyrClass& source) {
    const LyrObject* table = stored.getLink();
    const LyrMetaClass& wanted = LyrColorLookupTable::metaClass();
    if (!table || !table->getMetaClass().isOfType(wanted) || !holdsSectionsOnly(*table)) {
        return wrongType(&source);
    }
    return wanted.copy(&current, table);
}

}  // namespace

/** Kept for later needs. */
struct LyqPresetColortableHandler::Private : LyrPrivatePart {};

LyqPresetColortableHandler::LyqPresetColortableHandler(Lyrenum category, const LyrString& name)
    : LyqPresetDefaultHandler(category, name), d(new Private) {
    setProtectedFlags(0, 0x110100);
    if (!d) {
        LyrError::emitError(LyrError::Message(this, Lyr::AllocationFailed));
    }
    setPresetClass(PROXY_CLASS);
    metaClass().applyDefaultFlags(this);
}

LyqPresetColortableHandler::~LyqPresetColortableHandler() = default;

const LyrMetaClass& LyqPresetColortableHandler::metaClass() {
    static const LyrMetaClass meta("LyqPresetColortableHandler", sizeof(LyqPresetColortableHandler),
                                   &LyrObject::metaClass(), new HandlerFactory, LYS_COLORTABLE_MODULE, 0, nullptr, 0, 0,
                                   0, LyrObject::metaClass().isSingleton());
    return meta;
}

const LyrMetaClass& LyqPresetColortableHandler::getMetaClass() const {
    return metaClass();
}

LyrString LyqPresetColortableHandler::getPresetText(const LyrString& name, Lyrenum kind) {
    if (getApplicationObject() && kind == Lyr::DefaultPreset && builtInNames().contains(name)) {
        return QCoreApplication::translate("QObject", name.utf8());
    }
    return LyqPresetDefaultHandler::getPresetText(name, kind);
}

QPixmap LyqPresetColortableHandler::getPresetPixmap(const LyrString& name, Lyrenum kind) {
    return LyqPresetDefaultHandler::getPresetPixmap(name, kind);
}

bool LyqPresetColortableHandler::iocCallback(Message& message) {
    const LyrObject* table = getApplicationObject();
    const bool isChange = message.getMessageType() == Lyr::PropertyHasChanged;
    if (isChange && table && message.getInitialSender() == table && message.getPropertyID() != -1) {
        const LyrProperty* property = table->getProperty(message.getPropertyID());
        if (property && property->getFlags(LyrFlags::PRESET) != 0) {
            setCurrentPresetModified(true);
        }
    }
    return LyqPresetDefaultHandler::iocCallback(message);
}

bool LyqPresetColortableHandler::getPresetList(LyrStringList& list, Lyrenum kind) {
    if (kind == Lyr::DefaultPreset) {
        list = builtInNames();
        return true;
    }
    return LyqPresetDefaultHandler::getPresetList(list, kind);
}

bool LyqPresetColortableHandler::appToPreset(const LyrString& name, Lyrenum kind) {
    const LyrObject* current = getApplicationObject();
    const LyrObjectRefPtr proxy = current ? LyrObjectRefPtr(PROXY_CLASS, Lyr::TransientScope) : LyrObjectRefPtr();
    LyrClass* clone = proxy ? current->getMetaClass().clone(current) : nullptr;
    if (!clone) {
        return false;
    }
    const LyrObjectPtr table(dynamic_cast<LyrObject*>(clone));
    if (!table) {
        wrongType(this);
        LyrMetaClass::destruct(clone, true);
        return false;
    }
    table->prepareRoles();
    const FloatPair range = getCurrentReferenceRange().toPair();
    bool done = lyrSetValue(proxy.get(), Lyr::AbsoluteMode, Lyrenum(mAbsolutePreset ? 1 : 0));
    done = lyrSetValue(proxy.get(), Lyr::ColorLookupTable, LyrObjectLink(table.get(), nullptr, -1)) && done;
    done = lyrSetValue(proxy.get(), Lyr::ReferenceRange, range) && done;
    return done && savePreset(proxy, name, kind);
}

bool LyqPresetColortableHandler::presetToApp(const LyrString& name, Lyrenum kind) {
    const LyrObjectPtr current(getApplicationObject());
    if (!current) {
        return false;
    }
    LyrObjectPtr proxy;
    if (kind == Lyr::DefaultPreset) {
        proxy = getDefaultPresetProxy(name);
    } else {
        proxy = loadPreset(name, kind, nullptr);
    }
    if (!proxy) {
        return false;
    }
    const bool absolute = lyrGetValue<Lyrenum>(proxy.get(), Lyr::AbsoluteMode, 1) != 0;
    const auto table = lyrGetValue<LyrObjectLink>(proxy.get(), Lyr::ColorLookupTable, LyrObjectLink());
    const auto range = lyrGetValue<FloatPair>(proxy.get(), Lyr::ReferenceRange, LyrInterval<float>::EMPTY().toPair());
    // What follows happens after a copy that failed as well.
    const bool copied = copyTable(table, *current, *this);
    adjustLookupTable(absolute, LyrInterval<float, float>(range));
    mAbsolutePreset = absolute;
    return copied;
}

LyrObjectRefPtr LyqPresetColortableHandler::getDefaultPresetProxy(const LyrString& name) {
    LyrObjectRefPtr proxy(PROXY_CLASS, Lyr::TransientScope);
    if (!proxy) {
        return proxy;
    }
    lyrSetValue(proxy.get(), Lyr::AbsoluteMode, Lyrenum(0));
    if (name == builtInNames().at(1)) {
        const auto table = lyrGetValue<LyrObjectLink>(proxy.get(), Lyr::ColorLookupTable, LyrObjectLink());
        LyrValueArrayOPCache<LyrObjectLink> sections;
        if (sections.load(table.getLink(), Lyr::SectionList) && sections.items().size() == 3) {
            lyrSetValue(sections.items()[1].getLink(), Lyr::Type, Lyrenum(Lyr::InvertedRainbow));
        }
    }
    return proxy;
}

bool LyqPresetColortableHandler::adjustLookupTable(bool, const LyrInterval<float, float>&) {
    return false;
}

LyrInterval<float, float> LyqPresetColortableHandler::getCurrentReferenceRange() {
    return LyrInterval<float, float>::EMPTY();
}

LyrString LyqPresetColortableHandler::getDescription() {
    return QObject::tr("Colortable");
}

QWidget* LyqPresetColortableHandler::createSaveDialogExtension() {
    return new LyqPresetColortableSaveDialogExtensionWidget(this, nullptr, nullptr);
}
