#include "frame/host/class_record.h"

#include <deque>
#include <string>
#include <string_view>
#include <unordered_map>

namespace qn {
namespace {

/// Records outlive every static object of every module, so the table is never destroyed.
struct ClassTable {
    std::deque<std::string> names;
    std::deque<ClassRecord> records;
    std::unordered_map<std::string_view, const ClassRecord*> byName;
};

ClassTable& Table() {
    static ClassTable& table = *new ClassTable;
    return table;
}

}  // namespace

const ClassRecord& InternClass(const char* name) {
    ClassTable& table = Table();
    if (const auto known = table.byName.find(name); known != table.byName.end()) return *known->second;
    const std::string& kept = table.names.emplace_back(name);
    const ClassRecord& record = table.records.emplace_back(ClassRecord{kept.c_str()});
    table.byName.emplace(kept, &record);
    return record;
}

}  // namespace qn
