// The entity queries of Ulmora27: counts and name and type arrays of the host's three lists,
// each text asked for by one expression through the control's own Evaluate.
#include <string>

#include "qorvel/modelling/ulmora27.h"
#include "qorvel/platform/numbers.h"

namespace qorvel {

const Ulmora27::EntityList Ulmora27::kSelection{"SELECTION.NUMBER", "SELECTION.NAME[",
                                                "SELECTION.TYPE["};
const Ulmora27::EntityList Ulmora27::kCreated{"CREATED.NUMBER", "CREATED.NAME[", "CREATED.TYPE["};
const Ulmora27::EntityList Ulmora27::kUpdated{"UPDATED.NUMBER", "UPDATED.NAME[", "UPDATED.TYPE["};

namespace {

// The type texts the filter knows, in the order they are tried, with their qvEntityType bits.
// The composite curve alone reaches the client under another name.
struct EntityType {
  const char* host_text;
  int32_t bit;
  const char* client_text;
};
constexpr EntityType kTypes[] = {
    {"Surface", 1, "Surface"}, {"Solid", 2, "Solid"},
    {"Arc", 4, "Arc"},         {"Line", 8, "Line"},
    {"Curve", 16, "Curve"},    {"Composite Curve", 32, "CompCurve"},
    {"Point", 64, "Point"},    {"Workplane", 128, "Workplane"},
};

std::string ClientText(std::string host_text) {
  return host_text == "Composite Curve" ? "CompCurve" : host_text;
}

// The row whose text the host gave, case and blanks counting, if FilterFlag has its bit.
const EntityType* Matching(const std::string& host_text, int32_t filter) {
  for (const EntityType& t : kTypes) {
    if (host_text == t.host_text && (filter & t.bit) != 0) return &t;
  }
  return nullptr;
}

}  // namespace

std::string Ulmora27::Ask(const std::string& expression) {
  std::string text = expression;
  return Evaluate(text).ToText();
}

// A number or numeric text; the number at the start is read with the point, whatever the
// region, and anything else, the empty text of a failed call too, counts as 0.
int32_t Ulmora27::ReadCount(const char* expression) {
  return Variant(ReadNumberPrefix(Ask(expression))).ToLong();
}

int32_t Ulmora27::ItemsSelectedCount() { return ReadCount(kSelection.count); }
int32_t Ulmora27::ItemsCreatedCount() { return ReadCount(kCreated.count); }
int32_t Ulmora27::ItemsModifiedCount() { return ReadCount(kUpdated.count); }

// The count is read once: an entity gone since then gives empty texts and the loop goes on.
void Ulmora27::GetEntities(const EntityList& list, SafeArray& Names, SafeArray& Types,
                           int32_t& number) {
  const int32_t count = ReadCount(list.count);
  number = count;
  if (count == 0) return;
  Names.Redim({{1, count}}, false);
  Types.Redim({{1, count}}, false);
  for (int32_t i = 0; i < count; ++i) {
    const std::string index = std::to_string(i) + "]";
    Names.Put({i + 1}, Ask(list.name + index));
    Types.Put({i + 1}, ClientText(Ask(list.type + index)));
  }
}

void Ulmora27::GetSelectedEntities(SafeArray& Names, SafeArray& Types, int32_t& number) {
  GetEntities(kSelection, Names, Types, number);
}

void Ulmora27::GetCreatedEntities(SafeArray& Names, SafeArray& Types, int32_t& number) {
  GetEntities(kCreated, Names, Types, number);
}

void Ulmora27::GetModifiedEntities(SafeArray& Names, SafeArray& Types, int32_t& number) {
  GetEntities(kUpdated, Names, Types, number);
}

// The type comes first and the name only for a match; the arrays grow by one at each match,
// so they always hold exactly the matches so far.
void Ulmora27::GetFilteredSelection(SafeArray& Names, SafeArray& Types, int32_t& number,
                                    int32_t& FilterFlag) {
  number = 0;
  const int32_t count = ItemsSelectedCount();
  for (int32_t i = 0; i < count; ++i) {
    const std::string index = std::to_string(i) + "]";
    const EntityType* match = Matching(Ask(kSelection.type + index), FilterFlag);
    if (match == nullptr) continue;
    ++number;
    Names.Redim({{1, number}}, true);
    Types.Redim({{1, number}}, true);
    Names.Put({number}, Ask(kSelection.name + index));
    Types.Put({number}, match->client_text);
  }
}

}  // namespace qorvel
