#pragma once

#include "engine/import/importer_record.h"

namespace qn {

/// The formats that can be read. Records come from the "*.importer" files of a folder; no module is loaded
/// for them.
class ImporterRegistry {
public:
    /// Adds an importer of the engine itself; it stays when a folder is read again.
    void AddBuiltIn(const ImporterRecord& record) { builtIn_.push_back(record); }
    /// Replaces what an earlier folder gave. Files are taken in the order of their names; one that cannot be
    /// used is passed over and told in `GetProblems`. A missing folder gives nothing.
    void ReadFolder(const std::string& folder);

    /// Built-in records first. Pointers that the registry gave are valid until it changes.
    std::vector<const ImporterRecord*> GetRecords() const;
    const std::vector<String>& GetProblems() const { return problems_; }
    /// The importer for a file: the one with this id, else one that knows the content (and the ending, if
    /// several do), else one that knows the ending; null if none does.
    const ImporterRecord* Choose(const Guid& guid, std::string_view head, std::string_view fileName) const;
    /// All names with their endings, as "STEP (.stp .step), X (.x)".
    String Describe() const;

private:
    std::vector<ImporterRecord> builtIn_;
    std::vector<ImporterRecord> found_;
    std::vector<String> problems_;
};

/// The formats of the engine and of the module folder in force.
const ImporterRegistry& Importers();

}  // namespace qn
