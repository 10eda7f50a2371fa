# Run by CPack before it installs for a package. A zip has local times.
set(ENV{TZ} UTC)
