// Makes sure the current user's default key container exists and holds a
// signature key pair and a key-exchange key pair, creating what is missing
// and telling the user about it.
#pragma once

namespace brevantis {

// True when both key pairs are there (or were just made).
bool InitUser();

}  // namespace brevantis
