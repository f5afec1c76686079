#pragma once

#include <colortable/LysColortableExport.h>
#include <lys_core/LyqAnnotation.h>

#include <memory>

class LyqColorLookupTableWidget;

/** A colour bar legend over a view. It is rendered into an image and drawn by the view's rendering driver, which also
 * gives it its place: a user cannot drag it.
 *
 *  Properties: `ColorLookupTableRenderSettings` (link to the settings), `DotsPerInch` (the view's resolution, the first
 *  component counts), and the inherited link `Lyr::Object` to the table. The legend follows a change of any of them at
 * once. */
class LYS_COLORTABLE_EXPORT LyqColorLookupTableAnnotation : public LyqAnnotation {
    Q_OBJECT

public:
    explicit LyqColorLookupTableAnnotation(LyqAnnotationGroup* group = nullptr, const char* name = nullptr);
    ~LyqColorLookupTableAnnotation() override;

    static const LyrMetaClass& metaClass();
    const LyrMetaClass& getMetaClass() const override;

    /** The annotation frame, null once it is gone. */
    LyqFrame* widget() const override;
    /** The colour bar widget, null once it is gone. */
    LyqColorLookupTableWidget* lookupTableWidget() const;

    RenderingModeEnum getRenderingMode() const override { return RenderedImage; }
    void beginUserMove() override {}

protected:
    /** Tells its listeners of changed display units as if they were its own property. */
    bool iocCallback(Message& message) override;
    LyqFrame* outerFrame() const override;

private:
    struct Private;
    void buildFrames();
    void synchronize();

    std::unique_ptr<Private> d;
};
