#include "Other/QVClasses.h"
