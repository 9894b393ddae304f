import subprocess

total = 0
for _ in range(300):
    if subprocess.run(["/bin/true"], check=False).returncode == 0:
        total += 1
print(total)
