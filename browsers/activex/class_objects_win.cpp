#include "browsers/activex/identifiers.h"
