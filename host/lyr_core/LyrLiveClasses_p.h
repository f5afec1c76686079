#pragma once

class LyrMetaClass;

/** Which meta classes are there. When a process ends, static objects may outlive the class that they tell of; what
 * looks through the living objects then must not read it. */
namespace lyr_live_classes {

/** False once the meta class or one that it derives from was destroyed, without reading that. */
bool contains(const LyrMetaClass& meta) noexcept;

}  // namespace lyr_live_classes
