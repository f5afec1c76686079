#include "colortable/model/ModelTools.h"
#include "scarce/EachAllocation.h"

#include <colortable/legend/SectionImage.h>

#include <QImage>

// Pictures of sections with each allocation failing in turn.

namespace {

struct Rainbow {
    Rainbow() { model::setType(*section, Lyr::Rainbow); }
    model::Held<model::Section> section = model::newSection();
};

}  // namespace

TEST(ScarcePictures, of_sections_are_whole_or_null) {
    using lys::legend::Halves;
    const int failures = scarce::withEachAllocationFailing<Rainbow>(
        [](Rainbow& rainbow) {
            const QImage image =
                lys::legend::sectionImage(QSize(8, 40), Halves::LeftOverWhite, *rainbow.section, nullptr, nullptr);
            EXPECT_TRUE(image.isNull() || (qBlue(image.pixel(0, 39)) == 255 && qRed(image.pixel(0, 0)) == 255));
            return !image.isNull();
        },
        [](Rainbow&, bool) {});
    EXPECT_GT(failures, 2);
    EXPECT_GT(scarce::withEachAllocationFailing<Rainbow>(
                  [](Rainbow& rainbow) {
                      return lys::legend::sampleSection(40, *rainbow.section, nullptr, nullptr).size() == 40u;
                  },
                  [](Rainbow&, bool) {}),
              0);
}
