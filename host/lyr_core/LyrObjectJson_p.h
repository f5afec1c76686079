#pragma once

#include <lyr_core/LyrJsonValue_p.h>
#include <lyr_core/LyrObjectFile.h>

#include <cstddef>
#include <string>

class LyrMetaClass;

/** Names and limits of the file format. */
namespace LyrObjectFormat {
inline constexpr const char* FORMAT = "lyr-object";
inline constexpr std::size_t MAXIMUM_OBJECTS = 100000;
}  // namespace LyrObjectFormat

/** The member name of a property: the registered name of its identifier, the number in digits where it has none. */
std::string lyrPropertyKey(Lyrenum id);

/** The tree of an object, format and version included. On failure `message` says where and why. May throw
 * std::bad_alloc. */
bool lyrObjectToJson(const LyrObject& object, LyrJsonValue& root, std::string& message);

/** What a tree is to be made into. */
struct LyrObjectRequest {
    /** The class of the object that is to take the values; null for the class that the tree names. */
    const LyrMetaClass* target = nullptr;
    std::initializer_list<const char*> classes;
    Lyrenum scope;
};

/** Makes a new object of a tree. On failure `out` is left alone and the report's message says where and why. May throw
 *  std::bad_alloc. */
bool lyrObjectFromJson(const LyrJsonValue& root, const LyrObjectRequest& request, LyrObjectPtr& out,
                       LyrObjectFile::Report& report);

/** The version that a tree, maybe an incomplete one, claims; 0 if it is no object file's. */
int lyrVersionOf(const LyrJsonValue& root);

/** True if a link property owns what it links to, so that it is stored; false for soft links and other properties. */
bool lyrOwnsLinks(const LyrProperty& property);

/** Prepares the roles of everything that an object owns. */
void lyrPrepareOwnedRoles(const LyrObject& object, std::size_t depth = 0);
