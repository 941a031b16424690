#pragma once

// The options framework in one include.
#include "base/AmbrelMaterialOptionGroup.h"
#include "base/BoolOption.h"
#include "base/BootstrapOptionGroup.h"
#include "base/ChoiceOption.h"
#include "base/DoubleOption.h"
#include "base/IntOption.h"
#include "base/Option.h"
#include "base/OptionGroup.h"
#include "base/StringListOption.h"
#include "base/StringOption.h"
