#pragma once

#include <colortable/model/LyrColorLookupTable.h>
#include <lyr_core/LyrObjectIOCPtr.h>

#include "BenchTables.h"

/// The table as an object with properties, as a program holds it.
class ObjectTable {
public:
    explicit ObjectTable(const BenchTable& table);

    /// False when a property refused its value.
    bool isComplete() const { return complete_; }

    const LyrColorLookupTable& object() const;

private:
    LyrObjectRefPtr held_;
    bool complete_ = false;
};
