#pragma once

// Objects and values of the host.

#include "frame/host/api.h"
#include "frame/host/class_record.h"
#include "frame/host/collections.h"
#include "frame/host/context.h"
#include "frame/host/counted.h"
#include "frame/host/extension.h"
#include "frame/host/guid.h"
#include "frame/host/interface.h"
#include "frame/host/matrix.h"
#include "frame/host/memory.h"
#include "frame/host/meta.h"
#include "frame/host/name_generator.h"
#include "frame/host/params.h"
#include "frame/host/platform.h"
#include "frame/host/reference_source.h"
#include "frame/host/result.h"
#include "frame/host/string.h"
#include "frame/host/translate.h"
#include "frame/host/var.h"
#include "frame/host/xml.h"
