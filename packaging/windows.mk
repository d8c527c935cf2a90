# What Windows users install. With SIGN_KEY=FILE SIGN_CERTIFICATE=FILE, and SIGN_PASSWORD_FILE=FILE
# and SIGN_TIMESTAMP=ADDRESS where they are needed, the programs and the installer are signed.
.PHONY: windows-zip windows-installer pack-windows-installer try-windows
WINDOWS_BUILD := build/windows
WINDOWS_SETUP := build/packages/kerno-$(VERSION)-setup.exe
export SIGN_KEY SIGN_CERTIFICATE SIGN_PASSWORD_FILE SIGN_TIMESTAMP

windows-zip: windows
	@sh packaging/windows/make_zip.sh $(WINDOWS_BUILD) build/packages/kerno-$(VERSION)-windows.zip

windows-installer: windows
	@sh tools/setup.sh windows packages
	@$(MAKE) --no-print-directory pack-windows-installer

# The same out of programs that are there.
pack-windows-installer:
	@sh packaging/windows/make_installer.sh $(WINDOWS_BUILD) $(VERSION) $(WINDOWS_SETUP)

# Installs, uses, upgrades and uninstalls under Wine, in a prefix of its own.
try-windows: windows-installer build
	@$(PYTHON) tools/try_windows_installer.py $(WINDOWS_BUILD) build/release/src/cli/kerno $(WINDOWS_SETUP) \
	  build/try-windows
