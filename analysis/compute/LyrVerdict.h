#pragma once

/** What a tolerance says of a defect. */
enum class LyrVerdict { None, Pass, Warn, Fail };
