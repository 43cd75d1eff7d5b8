// Findings about target code as a report, placed where a person looks for them: in the script,
// the listing or the code file.
#pragma once

#include "check/diagnostic.h"
#include "machine/finding.h"
#include "machine/items.h"

#include <optional>
#include <vector>

// Where the items of a code stand in a text.
struct ItemPlaces {
    Source source;
    std::vector<Span> spans;       // by the number of the item from 0
    std::vector<QString> remarks;  // of each item, what else tells its place; may be empty
};

// In the code file, or the listing, that the items were divided from.
ItemPlaces PlacesInCode(const QString& name, const QByteArray& bytes, const Items& items);

// In the listing, if it is one of the same code.
std::optional<ItemPlaces> PlacesInListing(const QString& name, const QByteArray& bytes,
                                          const Items& items);

// What code that was damaged since stood for, by the lines of the listing; empty if the listing
// is one of other code.
std::vector<QString> RemarksOfListing(const QString& name, const QByteArray& bytes,
                                      const Items& items);

// In the script that the code was compiled from.
struct ScriptPlaces {
    std::optional<ItemPlaces> places;  // nothing if the script does not compile to this code
    std::vector<QString> remarks;      // if it does but for some damage, the lines of the script
    QString failure;                   // why the compiler told nothing, else empty
};
ScriptPlaces PlacesInScript(const Source& script, const Items& items);

// Each message names the item with its neighbours.
FileReport ReportOf(const Findings& findings, const Items& items, const ItemPlaces& places);
