#pragma once

#include "model/Wire.h"
