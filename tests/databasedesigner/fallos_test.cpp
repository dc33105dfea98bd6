#include "Estudio.h"
