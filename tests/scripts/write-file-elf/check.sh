python3 check.py
