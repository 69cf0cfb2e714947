#pragma once

namespace corvane {

/// Tells screen readers what the windows and parts are that the toolkit takes for mere containers.
/// Once, after the application object. GUI thread.
void InstallAccessibleRoles();

}  // namespace corvane
