// The smallest host: a window with a colour table, its editor, its legend, and something that is coloured through it.
//
//   embed                 shows the window
//   embed PICTURE.png     draws the window into a picture and ends

#include <colortable/ColortableIdentifiers.h>
#include <colortable/LibraryInit.h>
#include <colortable/editor/LyqColorLookupTableEditor.h>
#include <colortable/legend/LyqColorLookupTableWidget.h>
#include <colortable/model/LyrColorLookupTable.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrObjectIOCPtr.h>
#include <lyr_core/LyrObjectPtr.h>
#include <lyr_core/LyrPropertyPtr.h>
#include <lyr_core/LyrRGBA.h>
#include <lys_core/LyqApplication.h>

#include <QAction>
#include <QApplication>
#include <QHBoxLayout>
#include <QImage>
#include <QMainWindow>
#include <QPainter>
#include <QTimer>
#include <QUndoStack>

#include <cmath>

namespace {

/** Ripples of a height between 0 and 4 mm, coloured through a table, and drawn anew whenever the table changes. */
class ColoredView : public QWidget, public LyrIOC {
public:
    explicit ColoredView(LyrColorLookupTable* table) : mTable(this) {
        mTable = table;
        setMinimumSize(300, 300);
    }

protected:
    /** The table, or one of its sections, has changed. */
    bool iocCallback(Message& message) override {
        update();
        return LyrIOC::iocCallback(message);
    }

    void paintEvent(QPaintEvent*) override {
        QImage image(size(), QImage::Format_RGB32);
        for (int y = 0; y < height(); ++y) {
            for (int x = 0; x < width(); ++x) {
                const float height = 2.0f + 2.0f * std::sin(std::hypot(float(x) - 90.0f, float(y) - 60.0f) / 40.0f);
                LyrRGBA<float> color;  // stays black where the table has no colour
                static_cast<LyrColorLookupTable*>(mTable.get())->getColor(height, color);
                image.setPixel(x, y, QColor::fromRgbF(color.red, color.green, color.blue).rgb());
            }
        }
        QPainter(this).drawImage(0, 0, image);
    }

private:
    LyrObjectIOCPtr mTable;
};

int run() {
    // Objects are made by the name of their class, and held by references.
    const LyrObjectRefPtr object("LyrColorLookupTable", Lyr::DocumentScope);
    const LyrObjectRefPtr settings("LyrColorLookupTableRenderSettings", Lyr::DocumentScope);
    auto* table = dynamic_cast<LyrColorLookupTable*>(object.get());
    if (!table || !settings) {
        return 1;
    }
    lyrSetValue<Lyrenum>(table, Lyr::Quantity, Lyr::Length);
    LyrColorLookupTable::createStepped(table, 0.0f, 4.0f, 0.5f, Lyr::Rainbow);
    lyrSetValue(settings.get(), Lyr::Color, LyrRGBA<float>::BLACK());
    lyrSetValue<Lyrenum>(settings.get(), Lyr::HasOutline, 0);
    LyqApplication::instance().undoStack().clear();  // undo begins with what the user does

    QMainWindow window;
    auto* editor = new LyqColorLookupTableEditor;
    editor->setLogicObject(table);
    auto* legend = new LyqColorLookupTableWidget;
    legend->setColorTable(table);
    legend->setRenderSettings(settings.get());

    auto* content = new QWidget;
    auto* layout = new QHBoxLayout(content);
    layout->addWidget(new ColoredView(table), 1);
    layout->addWidget(legend);
    layout->addWidget(editor, 1);
    window.setCentralWidget(content);
    window.resize(1000, 600);

    auto* undo = new QAction(&window);
    undo->setShortcut(QKeySequence::Undo);
    QObject::connect(undo, &QAction::triggered, &window, [] { LyqApplication::instance().undo(); });
    window.addAction(undo);
    window.show();

    const QStringList arguments = QApplication::arguments();
    bool written = true;
    if (arguments.size() > 1) {
        QTimer::singleShot(0, &window, [&] {
            written = window.grab().save(arguments[1]);
            QApplication::quit();
        });
    }
    const int status = QApplication::exec();
    return written ? status : 1;
}

}  // namespace

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    LYQCOLORTABLE::LibraryInit::init();
    const int status = run();
    LyqApplication::instance().undoStack().clear();  // its steps hold objects of the library
    LYQCOLORTABLE::LibraryInit::cleanup();
    return status;
}
