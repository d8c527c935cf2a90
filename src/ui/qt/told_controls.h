// What assistive technology is told of controls of which the toolkit tells too little.
#pragma once

namespace kerno {

// Drop-down lists without a caption before them tell their names beside what is chosen, and the
// preview is a picture. Called once, before the first window.
void TellMoreOfControls();

}  // namespace kerno
