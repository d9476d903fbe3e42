// What the driver tells a host that asks for it, beside the events.
#pragma once

// A program that defines and exports this function has it called for each message that the driver
// drops, because it is longer than a mebibyte or because there is no memory for it: no event tells.
// Called on the reader's thread, once per message; must not throw. Null in other programs.
extern "C" [[gnu::weak, gnu::visibility("default")]] void QuorvelMessageDropped();
