#pragma once

#include <colortable/ColortableIdentifiers.h>
#include <colortable/LibraryInit.h>
#include <colortable/editor/LyqColorLookupTableRenderSettingsEditorWidget.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrObjectPath.h>
#include <lyr_core/LyrPropertyPtr.h>
#include <lys_core/LyqApplication.h>
#include <lys_core/LyqColorWidget.h>
#include <lys_core/LyqComboBox.h>
#include <lys_core/LyqLineEdit.h>
#include <lys_core/LyqSpinBox.h>

#include <QCoreApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QUndoStack>

#include <gtest/gtest.h>

#include <ToolkitApplication.h>

#include <vector>

/** The editor on two settings objects, driven by the names of its controls. */
class SettingsEditor : private ToolkitApplication, public testing::Test {
protected:
    SettingsEditor() {
        QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
        LYQCOLORTABLE::LibraryInit::init();
        edit({first.get(), second.get()});
        editor.show();
        settle();
        history().clear();
    }
    ~SettingsEditor() override {
        history().clear();
        LYQCOLORTABLE::LibraryInit::cleanup();
    }

    static LyqApplication& application() { return LyqApplication::instance(); }
    static QUndoStack& history() { return application().undoStack(); }

    static std::vector<LyrObjectPath> pathsTo(std::initializer_list<LyrObject*> objects) {
        std::vector<LyrObjectPath> paths;
        for (LyrObject* object : objects) {
            paths.emplace_back();
            if (object) {
                paths.back().append(LyrObjectLink(object, nullptr, -1));
            }
        }
        return paths;
    }
    void edit(std::initializer_list<LyrObject*> objects) {
        const auto paths = pathsTo(objects);
        editor.setObjects(paths.data(), static_cast<long long>(paths.size()));
    }

    /** Lets the editor hear and paint what is due. */
    static void settle() {
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents();
        QCoreApplication::processEvents();
    }

    template <class T>
    T* control(const char* name) {
        T* found = editor.findChild<T*>(QString::fromLatin1(name));
        EXPECT_NE(found, nullptr) << name;
        return found;
    }
    LyqComboBox& combo(const char* name) { return *control<LyqComboBox>(name); }
    LyqSpinBox& spin(const char* name) { return *control<LyqSpinBox>(name); }
    LyqLineEdit& caption() { return *control<LyqLineEdit>("mDescriptionLineEdit"); }

    /** What a user's choice of an entry does, one that is current already included. */
    void choose(const char* name, int index) {
        LyqComboBox& box = combo(name);
        box.setCurrentIndex(index);
        Q_EMIT box.activated(index);
        settle();
    }
    static void press(QWidget& widget, int key, const QString& text = {}, bool repeated = false) {
        QKeyEvent down(QEvent::KeyPress, key, Qt::NoModifier, text, repeated);
        QCoreApplication::sendEvent(&widget, &down);
    }
    static void type(QWidget& widget, const QString& text) {
        for (const QChar c : text) {
            press(widget, 0, QString(c));
        }
    }

    template <class T>
    static T valueOf(const LyrObject* object, Lyrenum property, T none) {
        return lyrGetValue<T>(object, property, none);
    }
    static Lyrenum choiceOf(const LyrObject* object, Lyrenum property) {
        return lyrGetValue<Lyrenum>(object, property, -1);
    }
    static QString textOf(const LyrObject* object, const char* property) {
        return QString::fromUtf8(lyrGetValue<const char*>(object, Lyrenum(property, true), "(none)"));
    }

    LyrObjectRefPtr first{"LyrColorLookupTableRenderSettings", Lyr::DocumentScope};
    LyrObjectRefPtr second{"LyrColorLookupTableRenderSettings", Lyr::DocumentScope};
    LyqColorLookupTableRenderSettingsEditorWidget editor;
};
