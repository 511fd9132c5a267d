#pragma once

#include "operations/method_call.h"

namespace qn::graph {

// The methods of the description, and two that it does not list. Each reads its arguments by their places and
// answers a `MethodResult`. Argument 0 is the scene where a method works on one.

/// 1 to 6: which ids to remove, a bool for each `RemovalFlag` in their order.
int RemoveIdsMethod(const MethodCall& call);
/// 1 to 3: which layers, 4: the text to add, 5: behind the id. Refused without a layer or a text.
int UpdateBsIdsMethod(const MethodCall& call);
/// 1 to 3: which layers, 4 and 5: what stands before and behind new ids. Refused without a layer.
int GenerateBsIdsMethod(const MethodCall& call);
/// Puts the id that an element is based on in the place of its own.
int ReplaceBsIdsMethod(const MethodCall& call);
/// Builds the hierarchy from the scene's nodes and gives its elements ids.
int GenerateHierarchyMethod(const MethodCall& call);
/// Not in the description: has the operation keep the scene.
int HoldSceneMethod(const MethodCall& call);

/// 1 to 4: what the nodes take over before the hierarchy goes: metadata, ids, external ids of occurrences,
/// metadata of definitions.
int RemoveHierarchyCacheMethod(const MethodCall& call);
/// 1 to 3: from which layers, 4: whether the system's own entries stay.
int RemoveMetadataMethod(const MethodCall& call);

/// Whether nodes and hierarchy agree; findings go to the context.
int ValidateHierarchyMethod(const MethodCall& call);
/// The same, and mends what it can. Answers only that it ran.
int RepairHierarchyMethod(const MethodCall& call);
/// Whether layers and viewports are sound; findings go to the context.
int ValidateLayersMethod(const MethodCall& call);
/// The same, and mends what it can. Answers only that it ran.
int RepairLayersMethod(const MethodCall& call);
/// Whether some node is one of a collaboration.
int FindCollaborationMethod(const MethodCall& call);
/// 1 to 3: whether to draw the pictures of model views, step views and detail views again.
int RegenerateThumbnailsMethod(const MethodCall& call);

/// 1: the context file to merge into the scene, 2: the query file, which filters it.
int MergeVisualContextMethod(const MethodCall& call);
/// 0: the source file, 1: its spatial index, 2: the query file to write.
int ExtractVisualContextMethod(const MethodCall& call);
/// Not in the description: hands its nine arguments to the shallow exporter. Refused without object 3.
int ExportShallowMethod(const MethodCall& call);
/// 1: the file to write, 2: the folder for long texts, 3: of the scene and its top nodes alone. A missing
/// name is reported, and the export runs all the same.
int ExportMetadataMethod(const MethodCall& call);

}  // namespace qn::graph
