#pragma once

#include <lys_core/LyqExtension.h>

class QWidget;

/** A panel beside the views. The host frames it, names it by its id and keeps its place. */
class LYS_CORE_EXPORT LyqDockExtension : public LyqExtension {
public:
    using LyqExtension::LyqExtension;
    ~LyqDockExtension() override;

    virtual Qt::DockWidgetArea area() const;
    /** Whether the dock is open the first time that the window shows it. */
    virtual bool isOpenAtFirst() const;
    /** Makes the panel's content. The host owns it through its parent and destroys it before the extension. */
    virtual QWidget* createWidget(QWidget* parent) = 0;
};
