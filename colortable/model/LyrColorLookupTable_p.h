#pragma once

#include <colortable/ColortableIdentifiers.h>
#include <colortable/model/ApplyingDefault_p.h>
#include <colortable/model/LyrColorLookupTable.h>
#include <lyr_core/LyrAction.h>
#include <lyr_core/LyrBooleanOP.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrLinkProperty.h>
#include <lyr_core/LyrSingleValueProperty.h>
#include <lyr_core/LyrValueArrayProperty.h>

#include <limits>

/** The properties of a table with their defaults, and its actions. */
struct LyrColorLookupTable::Private : LyrPrivatePart {
    using PositionListOP = LyrValueArrayOP<LyrValueArrayPropertyIF<float>>;
    using ColorListOP = LyrValueArrayOP<LyrValueArrayPropertyIF<LyrRGBA<float>>>;
    using EnumListOP = LyrValueArrayOP<LyrValueArrayPropertyIF<Lyrenum>>;
    using EnumOP = LyrSingleValueOP<LyrSingleValuePropertyIF<Lyrenum>>;
    using EnumPairOP = LyrSingleValueOP<LyrSingleValuePropertyIF<LyrValuePair<Lyrenum>>>;
    using Vector3OP = LyrSingleValueOP<LyrSingleValuePropertyIF<LyrVector3<float>>>;
    using FloatPairOP = LyrSingleValueOP<LyrSingleValuePropertyIF<LyrValuePair<float>>>;

    class PositionListAttr : public PositionListOP {
    public:
        PositionListAttr();
        bool resetData() override;
        bool allowsNonFinite() const override { return false; }
    };
    class SectionListAttr : public LyrObjectParentLinkListOP {
    public:
        SectionListAttr();
        /** Builds the three default sections anew. */
        bool resetData() override;
    };
    class ExtensionColorListAttr : public ColorListOP {
    public:
        ExtensionColorListAttr();
        bool resetData() override;
    };
    class ExtensionEnumListAttr : public EnumListOP {
    public:
        ExtensionEnumListAttr();
        bool resetData() override;
    };
    class TrueAttr : public LyrBooleanOP {
    public:
        TrueAttr();
        bool resetData() override;
    };
    class AutoLabelAttr : public TrueAttr {};
    class AutoScaleAttr : public TrueAttr {};
    class FiniteModeAttr : public EnumPairOP {
    public:
        FiniteModeAttr();
        bool resetData() override;
    };
    class QuantityAttr : public EnumOP {
    public:
        QuantityAttr();
        bool resetData() override;
    };
    class CreationParametersAttr : public Vector3OP {
    public:
        CreationParametersAttr();
        bool resetData() override;
    };
    class CreationTypeAttr : public EnumOP {
    public:
        CreationTypeAttr();
        bool resetData() override;
    };
    class MaximumRangeAttr : public FloatPairOP {
    public:
        MaximumRangeAttr();
        bool resetData() override;
    };

    /** Rebuilds the target from its `CreationParameters` (from, to, step) and `CreationType`. */
    class CreateSmoothAction : public LyrActionAttr {
    public:
        CreateSmoothAction() : LyrActionAttr(0, 0) {}
        void check() override;
        void execute() override;
        void cleanUp() override;
    };
    class CreateSteppedAction : public LyrActionAttr {
    public:
        CreateSteppedAction() : LyrActionAttr(0, 0) {}
        void check() override;
        void execute() override;
        void cleanUp() override;
    };
    class CreateSphereSegmentSteppedAction : public LyrActionAttr {
    public:
        CreateSphereSegmentSteppedAction() : LyrActionAttr(0, 0) {}
        void check() override;
        void execute() override;
        void cleanUp() override;
    };

    /** Hands the properties to the table: 1 if all went well, else Lyr::Failed. */
    Lyrenum registerProperties(LyrColorLookupTable& owner);

    PositionListAttr positions;
    SectionListAttr sections;
    ExtensionColorListAttr extensionColors;
    ExtensionEnumListAttr extensionEnums;
    AutoLabelAttr autoLabel;
    AutoScaleAttr autoScale;
    FiniteModeAttr finiteMode;
    QuantityAttr quantity;
    CreationParametersAttr creationParameters;
    CreationTypeAttr creationType;
    MaximumRangeAttr maximumRange;
    CreateSmoothAction createSmooth;
    CreateSteppedAction createStepped;
    CreateSphereSegmentSteppedAction createSphereSegmentStepped;
};
