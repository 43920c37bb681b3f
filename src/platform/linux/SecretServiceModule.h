#pragma once

#include "platform/SecretStore.h"

/// What the module exports. The Secret Service's store, which the caller owns; null where no service answers.
extern "C" brindle::SecretStore *brindleSecretService();
