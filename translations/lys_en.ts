<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en">
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
