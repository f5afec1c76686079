#pragma once

#include <lyr_core/LyrVector3.h>
#include <lys_core/LyqReport.h>
#include <lys_core/LysCoreExport.h>

#include <QObject>

#include <memory>
#include <vector>

class LyqLayer;
class LyrObject;

/** What is open in the host's window: one document, the layers that show it, the layer that editors act on, and the
 * reports of analyses. The window and plug-ins both use it; to be used from the thread of the user interface. */
class LYS_CORE_EXPORT LyqSession : public QObject {  // NOLINT(*-virtual-class-destructor): made once
    Q_OBJECT

public:
    static LyqSession& instance();

    /** The opened document, null if there is none; kept alive. */
    LyrObject* document() const;
    /** Opens another document, or none: all layers and reports of the one before go first. */
    void setDocument(LyrObject* document);

    /** The layers, the lowest first; kept alive. */
    std::vector<LyqLayer*> layers() const;
    /** Puts a layer on top of those that are there, in every view. A coloured one becomes the active layer. False for
     * null and for a layer that is there. */
    bool addLayer(LyqLayer* layer);
    /** Takes a layer out of every view. False if it is not there. */
    bool removeLayer(LyqLayer* layer);
    /** Takes out all layers whose classes a module brings; returns how many they were. */
    int removeLayersOf(const char* module);

    /** The layer that editors act on: a coloured one, or null. */
    LyqLayer* activeLayer() const;
    /** False for a layer that is not there or not coloured. */
    bool setActiveLayer(LyqLayer* layer);

    const std::vector<LyqReport>& reports() const;
    /** Adds a report in place of one with its id. */
    void addReport(const LyqReport& report);

Q_SIGNALS:
    void documentChanged();
    /** Layers came or went. */
    void layersChanged();
    void activeLayerChanged();
    void reportsChanged();
    /** The user clicked at a place (mm) of a slice or of a surface. */
    void picked(const LyrVector3<float>& position);

private:
    LyqSession();
    ~LyqSession() override;
    void updateActiveLayer();

    struct Private;
    std::unique_ptr<Private> d;
};
