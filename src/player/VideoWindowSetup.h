#pragma once

// The window format and update pacing the player draws best with. Call before the
// application object is made; every program that shows a player does.
void prepareVideoWindows();
