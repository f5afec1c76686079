#pragma once

#include <lyr_core/LyrCoreExport.h>

#include <string>
#include <vector>

/** A 32-bit identifier: names properties, object types, roles, message types, enumeration values and errors alike.
 *  Compared by its integer value; -1 means "no identifier". */
class LYR_CORE_EXPORT Lyrenum {
public:
    constexpr Lyrenum() noexcept = default;
    constexpr Lyrenum(int number) noexcept
        : mNumber(number) {}  // NOLINT(google-explicit-constructor): numbers are identifiers
    /** The identifier registered under a name. An unknown name gives -1; with `mustExist` it is reported as
     *  Lyr::UnknownIdentifier as well. */
    Lyrenum(const char* name, bool mustExist);

    constexpr operator int() const noexcept { return mNumber; }  // NOLINT(google-explicit-constructor)

    /** The registered name, empty when the number has none. */
    std::string getName() const noexcept;

private:
    int mNumber = -1;
};

/** The names and numbers of all identifiers in the process.
 *
 *  A name keeps the number of its first registration for the life of the process, also while nobody has it registered:
 *  undo steps and files in memory may still hold the number. Registrations are counted by name and by module. */
class LYR_CORE_EXPORT LyrIdentifierRegistry {
public:
    /** Registers a name for a module; a known name is counted once more and keeps its number. Returns the number, or -1
     *  for a null or empty name and when memory ran out (which is reported, and nothing is registered). */
    static int registerName(const char* name, const char* module) noexcept;
    /** Takes back one registration of the module. False if the module has none for this name. */
    static bool unregisterName(const char* name, const char* module) noexcept;
    /** The number of a name that is registered at present, -1 if it is not. */
    static int find(const char* name) noexcept;
    /** The name of a number, empty if it never had one. */
    static std::string nameOf(int number) noexcept;
    /** How often a name is registered at present, all modules together. */
    static int registrationCount(const char* name) noexcept;
    /** How many registrations a module holds at present. */
    static int moduleRegistrationCount(const char* module) noexcept;
};

/** Registers the host's own identifiers (it happens by itself on first use). Returns true. */
LYR_CORE_EXPORT bool __lyr_enum_init();  // NOLINT(bugprone-reserved-identifier): the name clients call
