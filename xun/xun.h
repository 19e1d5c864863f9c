// XUNTemplate91: the whole public interface.
#pragma once

#include "xun/export.h"
#include "xun/support/bounded_array.h"
#include "xun/support/dictionary.h"
#include "xun/support/error_handler.h"
#include "xun/support/error_reporter.h"
#include "xun/support/index.h"
#include "xun/support/keyed_collection.h"
#include "xun/support/message_box.h"
#include "xun/support/numeric.h"
#include "xun/support/object.h"
#include "xun/support/runtime_error.h"
#include "xun/support/text.h"
#include "xun/support/trap.h"
#include "xun/support/variant.h"
