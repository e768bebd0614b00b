// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The version of every JSON object that is written or answered, its key "schema". It grows when a key changes its
// meaning or goes; that keys are added does not count. docs/json.md and data/schema/spum.schema.json describe it.
constexpr int kJsonSchema = 1;
