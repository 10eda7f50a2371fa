#pragma once

/// Parts of the page that `reportOf` makes, from inspect/page.
namespace Inspect {

const char* reportStyle();
const char* reportScript();

}  // namespace Inspect
