#pragma once

#include <gtest/gtest.h>

#include <QFile>
#include <QProcess>
#include <QString>
#include <QStringList>

/** How the program ended. */
struct EndedProgram {
    int status = -1;  ///< -1: it crashed or did not end
    QString errors;
};

/** Runs the workbench as a user would, with the display of the tests or with none. */
inline EndedProgram runWorkbench(const QStringList& arguments, bool display = true) {
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    if (!display) {
        for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) {
            environment.remove(name);
        }
    }
#if defined(KEPT_DRIVERS)
    // The library that keeps them is loaded before the sanitizer's, which would refuse that.
    environment.insert("LD_PRELOAD", KEPT_DRIVERS);
    environment.insert("ASAN_OPTIONS", environment.value("ASAN_OPTIONS") + ":verify_asan_link_order=0");
#endif
    process.setProcessEnvironment(environment);
    process.start(WORKBENCH_PROGRAM, arguments);
    EXPECT_TRUE(process.waitForFinished(120000));
    return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
            QString::fromLocal8Bit(process.readAllStandardError())};
}

inline QByteArray contentOf(const QString& path) {
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    return file.readAll();
}

/** Writes a volume of bytes, x fastest; `fields` are further lines of the header. */
inline void writeBytes(const QString& path, int width, int height, int depth, const QByteArray& samples,
                       const QByteArray& fields = {}) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
    const QByteArray sizes =
        QByteArray::number(width) + ' ' + QByteArray::number(height) + ' ' + QByteArray::number(depth);
    file.write("NRRD0004\ntype: uint8\ndimension: 3\nsizes: " + sizes + "\nencoding: raw\n" + fields + "\n" + samples);
}
