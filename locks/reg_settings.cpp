#include "vexakit/locks.h"

CRegSettings& CRegSettings::operator=(const CRegSettings& other) {
    settings_ = other.settings_;
    return *this;
}
