# The source as a tarball that builds with CMake alone: build/dist/kerno-VERSION.tar.xz and .tar.gz of the last commit.
.PHONY: dist release try-builds try-reproducible
dist:
	@sh tools/make_dist.sh build/dist

# The tarball and every package, with checksums, all from a fresh clone of the last commit.
release:
	@sh tools/make_release.sh build

# The tarball built by GCC and Clang with the options that distributions use; ROWS="gcc-O2 clang-O0" takes these alone.
ROWS ?=
try-builds: setup setup-packages dist
	@sh tools/try_builds.sh build/dist/kerno-$(VERSION).tar.xz build/try-builds $(ROWS)

# Two builds of the tarball, at different places, times and speeds, compared byte for byte.
try-reproducible: setup setup-packages dist
	@sh tools/try_reproducible.sh build/dist/kerno-$(VERSION).tar.xz build/try-reproducible
