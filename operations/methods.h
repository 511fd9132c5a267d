#pragma once

#include "operations/method_call.h"

namespace qn::graph {

// The methods of the description, and two that it does not list.

int RemoveIdsMethod(const MethodCall& call);
int UpdateBsIdsMethod(const MethodCall& call);
int GenerateBsIdsMethod(const MethodCall& call);
int ReplaceBsIdsMethod(const MethodCall& call);
int GenerateHierarchyMethod(const MethodCall& call);
int HoldSceneMethod(const MethodCall& call);

int RemoveHierarchyCacheMethod(const MethodCall& call);
int RemoveMetadataMethod(const MethodCall& call);

int ValidateHierarchyMethod(const MethodCall& call);
int RepairHierarchyMethod(const MethodCall& call);
int ValidateLayersMethod(const MethodCall& call);
int RepairLayersMethod(const MethodCall& call);
int FindCollaborationMethod(const MethodCall& call);
int RegenerateThumbnailsMethod(const MethodCall& call);

int MergeVisualContextMethod(const MethodCall& call);
int ExtractVisualContextMethod(const MethodCall& call);
int ExportShallowMethod(const MethodCall& call);
int ExportMetadataMethod(const MethodCall& call);

}  // namespace qn::graph
