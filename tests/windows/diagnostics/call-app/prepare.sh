mkdir 'a b'
printf '@exit /b %%1\r\n' > 'a b/end.bat'
