#include "exchange/context_query.h"

#include "engine/xml/xml_document.h"
#include "exchange/limits.h"
#include "frame/host/collections.h"

#include <algorithm>
#include <unordered_set>

namespace qn::exchange {
namespace {

constexpr const wchar_t* kRoot = L"VisualContextQuery";
constexpr const wchar_t* kVersionName = L"version";
constexpr const wchar_t* kVersion = L"1";
constexpr const wchar_t* kValue = L"value";
constexpr int kPathsEntry = 0;
constexpr int kIdsEntry = 1;

bool HasControlLetters(const String& text) {
    const std::wstring_view letters = text.View();
    return std::any_of(letters.begin(), letters.end(), [](wchar_t letter) { return letter < L' '; });
}

/// A list of the document.
struct ListRow {
    const wchar_t* list;
    const wchar_t* entry;
    std::vector<String> ContextQuery::*values;
};
constexpr ListRow kLists[] = {
    {L"Paths", L"Path", &ContextQuery::paths},
    {L"Ids", L"Id", &ContextQuery::ids},
};

/// Reads the lists of one document.
class Reader {
public:
    Reader(ContextQuery& query, ReadProblem& problem) : query_(query), problem_(problem) {}

    bool Read(xml::Element& root) {
        if (root.GetName() != String(kRoot))
            return Refuse(L"the root element is \"" + root.GetName() + L"\", not \"" + kRoot + L"\"");
        const xml::Attribute* version = root.FindAttribute(kVersionName);
        if (version && version->GetValue() != String(kVersion))
            return Refuse(L"version \"" + version->GetValue() + L"\" is not known");
        for (const ListRow& row : kLists)
            if (!ReadLists(root, row)) return false;
        return true;
    }

private:
    bool Refuse(const String& reason, bool isLimit = false) {
        problem_ = {reason, isLimit};
        return false;
    }

    /// Elements of other names are left to later versions.
    bool ReadLists(xml::Element& root, const ListRow& row) {
        std::unordered_set<String> known;
        for (int i = 0; i < root.GetChildCount(); ++i) {
            xml::Element* list = root.GetChild(i);
            if (list->GetName() != String(row.list)) continue;
            for (int at = 0; at < list->GetChildCount(); ++at)
                if (!ReadEntry(*list->GetChild(at), row, known)) return false;
        }
        return true;
    }

    bool ReadEntry(const xml::Element& entry, const ListRow& row, std::unordered_set<String>& known) {
        if (entry.GetName() != String(row.entry)) return true;
        const xml::Attribute* attribute = entry.FindAttribute(kValue);
        const String value = attribute ? attribute->GetValue() : String();
        if (value.IsEmpty()) return Refuse(String(L"an element \"") + row.entry + L"\" has no value");
        if (HasControlLetters(value)) return Refuse(L"a value has control characters");
        if (!IsStorableId(value))
            return Refuse(L"a value is longer than " + Number(exchange_limits::kLongestId) + L" letters",
                          true);
        if (++count_ > exchange_limits::kMostEntries)
            return Refuse(L"more than " + Number(exchange_limits::kMostEntries) + L" entries", true);
        if (known.insert(value).second) (query_.*row.values).push_back(value);
        return true;
    }

    static String Number(std::size_t value) { return String::FromUtf8(std::to_string(value)); }

    ContextQuery& query_;
    ReadProblem& problem_;
    std::size_t count_ = 0;
};

/// What stands for a letter inside the quotes of an attribute; the empty text if the letter itself does.
std::string_view EscapeOf(char letter) {
    switch (letter) {
        case '&':
            return "&amp;";
        case '<':
            return "&lt;";
        case '>':
            return "&gt;";
        case '"':
            return "&quot;";
        default:
            return {};
    }
}

void AppendEscaped(std::string& out, const String& text) {
    for (const char letter : text.ToUtf8()) {
        const std::string_view escape = EscapeOf(letter);
        if (escape.empty())
            out += letter;
        else
            out += escape;
    }
}

std::string Narrow(const wchar_t* text) {
    return String(text).ToUtf8();
}

Var KeysOf(const std::vector<String>& values) {
    Var map;
    map.InitMap();
    map.ToMap()->Reserve(static_cast<int>(values.size()));
    for (const String& value : values)
        map.At(Var(value)) = Var(true);
    return map;
}

}  // namespace

bool IsStorableId(const String& text) {
    const bool fits = static_cast<std::size_t>(text.Length()) <= exchange_limits::kLongestId;
    return text.NonEmpty() && fits && !HasControlLetters(text);
}

bool ParseContextQuery(std::string_view text, ContextQuery& query, ReadProblem& problem) {
    query = {};
    String reason;
    const Counted<xml::XmlElement> root = xml::ParseXml(text, &reason);
    if (!root) {
        problem = {reason, false};
        return false;
    }
    ContextQuery read;
    if (!Reader(read, problem).Read(*root)) return false;
    query = std::move(read);
    return true;
}

std::string FormatContextQuery(const ContextQuery& query) {
    std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<" + Narrow(kRoot) + " version=\"1\">\n";
    for (const ListRow& row : kLists) {
        text += "  <" + Narrow(row.list) + ">\n";
        for (const String& value : query.*row.values) {
            text += "    <" + Narrow(row.entry) + " value=\"";
            AppendEscaped(text, value);
            text += "\"/>\n";
        }
        text += "  </" + Narrow(row.list) + ">\n";
    }
    return text + "</" + Narrow(kRoot) + ">\n";
}

Var FilterOf(const ContextQuery& query) {
    Var filter;
    filter.InitMap();
    filter.At(kPathsEntry) = KeysOf(query.paths);
    filter.At(kIdsEntry) = KeysOf(query.ids);
    return filter;
}

}  // namespace qn::exchange
