<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en">
<context>
    <name>LyqColorLookupTableCreateSmoothDialogUI</name>
    <message>
        <source>from</source>
        <translation>&amp;from</translation>
    </message>
    <message>
        <source>to</source>
        <translation>&amp;to</translation>
    </message>
    <message>
        <source>type</source>
        <translation>t&amp;ype</translation>
    </message>
    <message>
        <source>Ok</source>
        <translation>&amp;Ok</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>&amp;Cancel</translation>
    </message>
</context>
<context>
    <name>LyqColorLookupTableCreateSphereSegmentSteppedDialogUI</name>
    <message>
        <source>from</source>
        <translation>&amp;from</translation>
    </message>
    <message>
        <source>to</source>
        <translation>&amp;to</translation>
    </message>
    <message>
        <source>step</source>
        <translation>&amp;step</translation>
    </message>
    <message>
        <source>type</source>
        <translation>t&amp;ype</translation>
    </message>
    <message>
        <source>Ok</source>
        <translation>&amp;Ok</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>&amp;Cancel</translation>
    </message>
</context>
<context>
    <name>LyqColorLookupTableCreateSteppedDialogUI</name>
    <message>
        <source>from</source>
        <translation>&amp;from</translation>
    </message>
    <message>
        <source>to</source>
        <translation>&amp;to</translation>
    </message>
    <message>
        <source>step</source>
        <translation>&amp;step</translation>
    </message>
    <message>
        <source>type</source>
        <translation>t&amp;ype</translation>
    </message>
    <message>
        <source>Ok</source>
        <translation>&amp;Ok</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>&amp;Cancel</translation>
    </message>
</context>
<context>
    <name>LyqColorLookupTableEditorUI</name>
    <message>
        <source>Create smooth</source>
        <translation>Create s&amp;mooth</translation>
    </message>
    <message>
        <source>Create stepped</source>
        <translation>Create ste&amp;pped</translation>
    </message>
    <message>
        <source>Auto tickmarks</source>
        <translation>Auto tic&amp;kmarks</translation>
    </message>
    <message>
        <source>Auto scale</source>
        <translation>Auto sca&amp;le</translation>
    </message>
</context>
<context>
    <name>LyqColorLookupTableRenderSettingsEditorWidgetUI</name>
    <message>
        <source>Restore Defaults</source>
        <translation>Restore &amp;Defaults</translation>
    </message>
    <message>
        <source>Colorbar visibility</source>
        <translation>Colorbar &amp;visibility</translation>
    </message>
    <message>
        <source>Colorbar thickness [pixel]</source>
        <translation>Colorbar &amp;thickness [pixel]</translation>
    </message>
    <message>
        <source>Colorbar stretch [%]</source>
        <translation>Colorbar &amp;stretch [%]</translation>
    </message>
    <message>
        <source>Colorbar position</source>
        <translation>Colorbar &amp;position</translation>
    </message>
    <message>
        <source>Text position</source>
        <translation>Te&amp;xt position</translation>
    </message>
    <message>
        <source>Colorbar alignment</source>
        <translation>Colorbar &amp;alignment</translation>
    </message>
    <message>
        <source>Font outline</source>
        <translation>Font o&amp;utline</translation>
    </message>
    <message>
        <source>Font</source>
        <translation>&amp;Font</translation>
    </message>
    <message>
        <source>Font outline color</source>
        <translation>Font outline c&amp;olor</translation>
    </message>
    <message>
        <source>Text alignment</source>
        <translation>Text ali&amp;gnment</translation>
    </message>
    <message>
        <source>Caption</source>
        <translation>&amp;Caption</translation>
    </message>
    <message>
        <source>Font color</source>
        <translation>Font colo&amp;r</translation>
    </message>
</context>
<context>
    <name>Quantity</name>
    <message>
        <source>SquareMillimeter</source>
        <translation>Square millimeter</translation>
    </message>
    <message>
        <source>SquareCentimeter</source>
        <translation>Square centimeter</translation>
    </message>
    <message>
        <source>SquareMeter</source>
        <translation>Square meter</translation>
    </message>
    <message>
        <source>SquareMicrometer</source>
        <translation>Square micrometer</translation>
    </message>
    <message>
        <source>SquareInch</source>
        <translation>Square inch</translation>
    </message>
    <message>
        <source>SquareFoot</source>
        <translation>Square foot</translation>
    </message>
    <message>
        <source>CubicMillimeter</source>
        <translation>Cubic millimeter</translation>
    </message>
    <message>
        <source>CubicCentimeter</source>
        <translation>Cubic centimeter</translation>
    </message>
    <message>
        <source>CubicMeter</source>
        <translation>Cubic meter</translation>
    </message>
    <message>
        <source>CubicMicrometer</source>
        <translation>Cubic micrometer</translation>
    </message>
    <message>
        <source>CubicInch</source>
        <translation>Cubic inch</translation>
    </message>
    <message>
        <source>CubicFoot</source>
        <translation>Cubic foot</translation>
    </message>
</context>
</TS>
