#pragma once

#include <lys_core/LyqExtension.h>
#include <lys_core/LysCoreExport.h>

#include <QObject>

#include <memory>
#include <vector>

/** All that plug-ins offer to the host's window. Plug-ins add when they are initialised and remove when they are
 * cleaned up; the window listens, so that either may happen while it is open. What a plug-in forgets goes with its
 * module. */
class LYS_CORE_EXPORT LyqExtensionRegistry : public QObject {  // NOLINT(*-virtual-class-destructor): made once
    Q_OBJECT

public:
    static LyqExtensionRegistry& instance();

    /** Takes over an extension. False, and it is destroyed, if it is null, lacks an id or a module, or its id is taken
     * by one of the same kind. */
    bool add(std::unique_ptr<LyqExtension> extension);
    /** Destroys an extension. False if it is not registered. */
    bool remove(const LyqExtension* extension);
    /** Destroys all of a module, the last one first; returns how many they were. */
    int removeAllFrom(const char* module);
    /** To be called when an extension's state (LyqActionExtension::isEnabled()) is another now. */
    void announceChange(const LyqExtension* extension);

    /** In the order in which they were added. */
    std::vector<LyqExtension*> extensions() const;
    /** Those of one kind, in the same order. */
    template <class Kind>
    std::vector<Kind*> extensionsOf() const {
        std::vector<Kind*> fitting;
        for (LyqExtension* extension : extensions()) {
            if (auto* kind = dynamic_cast<Kind*>(extension)) {
                fitting.push_back(kind);
            }
        }
        return fitting;
    }
    /** The one of a kind with an id, null if there is none. */
    template <class Kind>
    Kind* find(const QString& id) const {
        for (Kind* extension : extensionsOf<Kind>()) {
            if (extension->id() == id) {
                return extension;
            }
        }
        return nullptr;
    }

Q_SIGNALS:
    void added(LyqExtension* extension);
    /** It is whole for the last time: let go of all that it made. */
    void aboutToRemove(LyqExtension* extension);
    void changed(LyqExtension* extension);

private:
    LyqExtensionRegistry();
    ~LyqExtensionRegistry() override;
    void removeAt(std::size_t index);

    struct Private;
    std::unique_ptr<Private> d;
};
