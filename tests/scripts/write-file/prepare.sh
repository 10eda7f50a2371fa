mkdir folder
echo untouched > kept.hex
