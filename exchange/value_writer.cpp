#include "exchange/value_writer.h"

#include "frame/host/collections.h"

#include <unordered_set>
#include <vector>

namespace qn::exchange {
namespace {

constexpr wchar_t kNoTextMark = L'#';
constexpr int kMatrixSize = 4;

/// A map or an array whose entries are being written.
struct Level {
    const VarMap* map;
    const VarArray* array;
    int next = 0;

    int Count() const { return map ? map->GetCount() : array->GetCount(); }
    const Interface* Identity() const {
        return map ? static_cast<const Interface*>(map) : static_cast<const Interface*>(array);
    }
};

std::string KeyText(const Var& key) {
    const String text = key.ToText();
    const bool isPlain = key.IsText() && text.At(0) != kNoTextMark;
    return isPlain ? text.ToUtf8() : "#" + text.ToUtf8();
}

void WriteMatrix(JsonWriter& json, const Var& value) {
    Matrix4<double> matrix;
    value.copy_to(matrix);
    json.BeginArray();
    for (int row = 0; row < kMatrixSize; ++row)
        for (int column = 0; column < kMatrixSize; ++column)
            json.Number(matrix.m[row][column]);
    json.EndArray();
}

void WriteObjectName(JsonWriter& json, const Var& value) {
    const Interface* object = value.ToInterface();
    if (!object) return json.Null();
    json.BeginObject();
    json.TextField("$object", std::string_view(object->GetInterfaceName()));
    json.EndObject();
}

}  // namespace

/// Goes over nested containers with a stack of its own.
struct ValueWriter::Walk {
    ValueWriter& writer;
    std::vector<Level> levels;
    std::unordered_set<const Interface*> open;

    void Enter(const Var& value) {
        if (writer.left_ > 0) --writer.left_;
        const Level level{value.ToMap(), value.ToArray()};
        const bool isContainer = (level.map || level.array) && writer.left_ > 0;
        if (!isContainer) return writer.WriteLeaf(writer.left_ > 0 ? value : Var());
        if (!open.insert(level.Identity()).second) return writer.json_.Null();
        level.map ? writer.json_.BeginObject() : writer.json_.BeginArray();
        levels.push_back(level);
    }

    void Leave() {
        levels.back().map ? writer.json_.EndObject() : writer.json_.EndArray();
        open.erase(levels.back().Identity());
        levels.pop_back();
    }

    void Run(const Var& value) {
        Enter(value);
        while (!levels.empty()) {
            Level& level = levels.back();
            const int at = level.next++;
            if (at >= level.Count() || writer.left_ == 0) {
                Leave();
                continue;
            }
            if (level.map) writer.json_.Key(KeyText(level.map->KeyAt(at)));
            Enter(level.map ? level.map->ValueAt(at) : level.array->Get(at));
        }
    }
};

void ValueWriter::Write(const Var& value) {
    Walk{*this, {}, {}}.Run(value);
}

void ValueWriter::WriteField(const char* key, const Var& value) {
    if (value.IsEmpty()) return;
    json_.Key(key);
    Write(value);
}

void ValueWriter::WriteLeaf(const Var& value) {
    switch (value.GetTag()) {
        case VarTag::kBool:
            return json_.Bool(value.ToBool());
        case VarTag::kInt:
        case VarTag::kInt64: {
            std::int64_t number = 0;
            value.copy_to(number);
            return json_.Integer(number);
        }
        case VarTag::kFloat:
        case VarTag::kDouble: {
            double number = 0;
            value.copy_to(number);
            return json_.Number(number);
        }
        case VarTag::kText:
            return WriteText(value.ToText());
        case VarTag::kMatrix:
            return WriteMatrix(json_, value);
        case VarTag::kBlock:
            json_.BeginObject();
            json_.IntegerField("$bytes", static_cast<std::int64_t>(value.BlockBytes().size()));
            return json_.EndObject();
        case VarTag::kObject:
            return WriteObjectName(json_, value);
        default:
            return json_.Null();
    }
}

void ValueWriter::WriteText(const String& text) {
    const std::string utf8 = text.ToUtf8();
    if (!blobs_ || utf8.size() <= TextBlobs::kLongestInline) return json_.Text(utf8);
    json_.BeginObject();
    json_.TextField("$blob", blobs_->Add(utf8));
    json_.IntegerField("bytes", static_cast<std::int64_t>(utf8.size()));
    json_.EndObject();
}

}  // namespace qn::exchange
