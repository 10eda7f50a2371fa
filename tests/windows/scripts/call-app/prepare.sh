mkdir 'a b' '100%'
printf '@echo called with %%~1 and %%2\r\n@exit /b 3\r\n' > 'a b/show.bat'
cp 'a b/show.bat' show.bat
