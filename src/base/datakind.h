#pragma once

namespace oblino {

/// A kind of data that the program keeps.
enum class DataKind { Tasks, Notes, Whiteboard, Clients, TeamMembers, Settings, Cloud };

} // namespace oblino
