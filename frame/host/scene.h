#pragma once

// Scenes, streams and selectors of the host.

#include "frame/host/collaboration.h"
#include "frame/host/descriptor.h"
#include "frame/host/entity.h"
#include "frame/host/generator.h"
#include "frame/host/layer.h"
#include "frame/host/node.h"
#include "frame/host/objects.h"
#include "frame/host/parameter_ids.h"
#include "frame/host/property_ids.h"
#include "frame/host/scene_document.h"
#include "frame/host/selector.h"
#include "frame/host/stream.h"
#include "frame/host/undo.h"
#include "frame/host/unique_id.h"
#include "frame/host/view_updater.h"
