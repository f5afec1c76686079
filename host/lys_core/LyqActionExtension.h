#pragma once

#include <lys_core/LyqExtension.h>

#include <QIcon>
#include <QKeySequence>

class QWidget;

/** An entry of a menu, and of the tool bar if it wants. When isEnabled() or isChecked() give another answer, tell
 * LyqExtensionRegistry::announceChange(). */
class LYS_CORE_EXPORT LyqActionExtension : public LyqExtension {
public:
    enum class Menu { File, Edit, View, Analysis, Tools, Help };

    using LyqExtension::LyqExtension;
    ~LyqActionExtension() override;

    virtual Menu menu() const;
    virtual QKeySequence shortcut() const;
    virtual QIcon icon() const;
    virtual bool isInToolBar() const;
    virtual bool isEnabled() const;
    virtual bool isCheckable() const;
    virtual bool isChecked() const;

    /** The entry was chosen.
     *  @param window  parent for dialogs */
    virtual void trigger(QWidget* window) = 0;
};
