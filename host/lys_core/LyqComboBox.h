#pragma once

#include <lys_core/LysCoreExport.h>

#include <QComboBox>

/** A combo box that is filled again and again from a model. */
class LYS_CORE_EXPORT LyqComboBox : public QComboBox {
    Q_OBJECT

public:
    explicit LyqComboBox(QWidget* parent = nullptr, const char* name = nullptr);

    /** Makes these the items, silently. Items that are there already stay, with the current one and an open list; else
     * the current index stays where it is, as far as the new list reaches. */
    void setItems(const QStringList& fresh);
    QStringList items() const;

    /** Chooses an item, silently. */
    void setCurrentSilently(int index);

protected:
    void wheelEvent(QWheelEvent* event) override;
};
