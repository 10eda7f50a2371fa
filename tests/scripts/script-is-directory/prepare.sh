mkdir folder
