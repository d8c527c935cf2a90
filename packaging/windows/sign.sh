#!/bin/sh
# Signs Windows programs in place: packaging/windows/sign.sh FILE...
#   SIGN_KEY, SIGN_CERTIFICATE   the key and the certificate with its chain (PEM)
#   SIGN_PASSWORD_FILE           a file with the key's password, where it has one
#   SIGN_TIMESTAMP               address of a time stamp service (RFC 3161), where there is to be one
# Nothing of this is printed, and the password is on no command line.
set -e
for file in "$@"; do
  signed=$file.signed
  rm -f "$signed"
  osslsigncode sign -h sha256 -n Kerno -key "$SIGN_KEY" -certs "$SIGN_CERTIFICATE" \
    ${SIGN_PASSWORD_FILE:+-readpass "$SIGN_PASSWORD_FILE"} ${SIGN_TIMESTAMP:+-ts "$SIGN_TIMESTAMP"} \
    -in "$file" -out "$signed" >/dev/null
  mv "$signed" "$file"
done
