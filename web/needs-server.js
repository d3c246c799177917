// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Browsers run modules and workers only from a server: say so where the page was opened as a file.
if (location.protocol === "file:") {
  document.getElementById("needs-server").hidden = false;
  document.getElementById("main").hidden = true;
}
