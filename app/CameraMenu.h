#pragma once

namespace vistrel {

class CameraManagement;
class NSMenu;

/// Appends an item for each listed camera, in order, with a check mark at those that bear the selected one's
/// name.
void addCameraItems(NSMenu& menu, const CameraManagement& cameras);

/// Appends the program's commands, set off by separators.
void addCommandItems(NSMenu& menu);

}  // namespace vistrel
