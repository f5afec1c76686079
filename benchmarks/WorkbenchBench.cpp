// How long the window takes: to open a volume until it is first seen in colour, and to colour a slice anew. Wants a
// display with OpenGL: xvfb-run -a -s "-screen 0 1280x1024x24" build/bench/bin/bench_workbench [VOLUME]

#include <analysis/TableColors.h>
#include <colortable/model/LyrColorLookupTable.h>
#include <lyr_core/LyrObjectPtr.h>
#include <lys_core/LyqCameraWidget.h>
#include <workbench/MainWindow.h>
#include <workbench/PluginHost.h>
#include <workbench/ViewGrid.h>

#include <QApplication>
#include <QElapsedTimer>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <vector>

namespace {

double milliseconds(const QElapsedTimer& timer) {
    return static_cast<double>(timer.nsecsElapsed()) * 1e-6;
}

double median(std::vector<double> times) {
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

void waitUntil(const auto& condition) {
    while (!condition()) {
        QApplication::processEvents(QEventLoop::AllEvents, 5);
    }
}

/** A slice of 1024² values between the table's ends, coloured anew and anew. */
void recolor() {
    const LyrObjectPtr table(new LyrColorLookupTable);
    std::vector<float> values(1024 * 1024);
    std::uint32_t state = 1;
    for (float& value : values) {
        state = state * 1664525u + 1013904223u;
        value = static_cast<float>(state >> 8) / 8388608.0f - 1.0f;
    }
    std::vector<std::uint8_t> bytes(values.size() * 4);
    std::vector<double> times;
    for (int i = 0; i < 51; ++i) {
        QElapsedTimer timer;
        timer.start();
        lysColorBytes(static_cast<LyrColorLookupTable&>(*table), values, bytes, 1.0f);
        times.push_back(milliseconds(timer));
    }
    std::printf("coloring a slice of 1024 x 1024: %.2f ms, at best %.2f\n", median(times),
                *std::min_element(times.begin(), times.end()));
}

void open(const QString& volume) {
    workbench::PluginHost plugins(workbench::PluginHost::defaultFolder());
    for (const QString& problem : plugins.loadAll()) {
        std::fprintf(stderr, "%s\n", problem.toLocal8Bit().constData());
    }
    {
        workbench::MainWindow window(false);
        window.resize(1280, 860);
        window.show();
        waitUntil([&] { return window.isActiveWindow() || window.isVisible(); });
        window.views().finishFrames();
        std::vector<double> slices, all;
        for (int i = 0; i < 5; ++i) {
            window.closeVolume();
            QElapsedTimer timer;
            timer.start();
            window.openVolume(volume);
            waitUntil([&] { return !window.isLoading(); });
            window.views().finishFrames();
            slices.push_back(milliseconds(timer));
            waitUntil([&] { return !window.isBusy(); });
            window.views().finishFrames();
            all.push_back(milliseconds(timer));
        }
        std::printf("opening %s: %.0f ms to the slices in color, %.0f ms with the surface\n",
                    volume.toLocal8Bit().constData(), median(slices), median(all));
    }
    plugins.unloadAll();
}

}  // namespace

int main(int argc, char** argv) {
    LyqCameraWidget::prepareOpenGL();
    const QApplication application(argc, argv);
    recolor();
    open(argc > 1 ? QString::fromLocal8Bit(argv[1]) : QString("builtin:casting@256"));
    return 0;
}
