#include "index/dbasekey.h"

DatabaseKeyB::~DatabaseKeyB() = default;
