#pragma once

#include "frame/host/api.h"

#include <span>

namespace qn::frame {

/// One class as the host gets to know it.
struct CatalogueRow {
    const char* key;
    const char* displayName;     ///< source text, translated at registration
    unsigned registrationValue;  ///< passed on; the host gives it its meaning
};

/// One key that can be created, with its maker.
struct CreationRow {
    const char* key;
    Counted<Interface> (*make)();
};

/// The classes in the order of registration.
std::span<const CatalogueRow> Catalogue();
/// The keys in the order in which a wanted key is compared with them: a list of its own.
std::span<const CreationRow> CreationOrder();

/// Registers the catalogue, row by row; failures of single rows stop nothing.
void RegisterCatalogue(ModuleHandle handle);
/// A new object with one count, or null for an unknown key or without memory. Keys ignore ASCII case.
Counted<Interface> CreateByKey(const char* key);

}  // namespace qn::frame
